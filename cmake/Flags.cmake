# One interface target carries the language level, warnings and definitions of all our code.
add_library(hm_flags INTERFACE)
target_compile_features(hm_flags INTERFACE cxx_std_20)
target_include_directories(hm_flags INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_options(hm_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual
  # g++ 12 sees overlaps in std::string that are not there (gcc bug 105651).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_compile_definitions(hm_flags INTERFACE
  QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING
  HOLLOWMERE_VERSION="${PROJECT_VERSION}")
set(CMAKE_CXX_EXTENSIONS OFF)

if(HOLLOWMERE_WERROR)
  target_compile_options(hm_flags INTERFACE -Werror)
endif()

if(HOLLOWMERE_SANITIZE)
  target_compile_options(hm_flags INTERFACE -fsanitize=${HOLLOWMERE_SANITIZE} -fno-omit-frame-pointer)
  target_link_options(hm_flags INTERFACE -fsanitize=${HOLLOWMERE_SANITIZE})
endif()

# ccache and mold are used when they are there: both only make the build quicker.
find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
endif()
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM)
  target_link_options(hm_flags INTERFACE -fuse-ld=mold)
endif()

# hm_library(NAME SOURCES ... [LINK ...]): one static library of ours.
function(hm_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC hm_flags ${ARG_LINK} PRIVATE ${ARG_PRIVATE_LINK})
endfunction()
