# Every library that is not ours, found in one place. docs/architecture.md says why each was chosen.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)
find_package(Qt6 REQUIRED COMPONENTS Core)
if(HOLLOWMERE_GUI)
  find_package(Qt6 REQUIRED COMPONENTS Widgets PrintSupport Test)
endif()
pkg_check_modules(NETTLE REQUIRED IMPORTED_TARGET nettle)
find_package(simdjson REQUIRED)
find_package(RapidJSON REQUIRED)
find_package(pugixml REQUIRED)
pkg_check_modules(MONGOC REQUIRED IMPORTED_TARGET libmongoc-1.0)
if(HOLLOWMERE_TESTS)
  find_package(GTest REQUIRED)
  if(HOLLOWMERE_GUI)
    find_package(Qt6 REQUIRED COMPONENTS Test)
  endif()
endif()

# RapidJSON is headers only; its package config names folders, not a target.
add_library(hm_rapidjson INTERFACE)
target_include_directories(hm_rapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIRS})

# No package config either: a header and a library.
find_path(PGQUERY_INCLUDE_DIR pg_query.h REQUIRED)
find_library(PGQUERY_LIBRARY pg_query REQUIRED)
add_library(hm_pgquery INTERFACE)
target_include_directories(hm_pgquery SYSTEM INTERFACE ${PGQUERY_INCLUDE_DIR})
target_link_libraries(hm_pgquery INTERFACE ${PGQUERY_LIBRARY})
