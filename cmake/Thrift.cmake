# hm_thrift_interface(NAME FILE SERVICE): a static library of what the Thrift compiler makes of FILE.thrift, both
# sides of its one service. Generated headers are system headers: their warnings are not ours.
find_program(THRIFT_COMPILER thrift REQUIRED)
pkg_check_modules(THRIFT REQUIRED IMPORTED_TARGET thrift)

function(hm_thrift_interface name file service)
  get_filename_component(base "${file}" NAME_WE)
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${base}-thrift")
  set(made "${folder}/${service}.cpp" "${folder}/${service}.h" "${folder}/${base}_types.cpp"
    "${folder}/${base}_types.h")
  file(MAKE_DIRECTORY "${folder}")
  add_custom_command(OUTPUT ${made}
    COMMAND "${THRIFT_COMPILER}" --gen cpp:no_skeleton,moveable_types -out "${folder}"
      "${CMAKE_CURRENT_SOURCE_DIR}/${file}"
    DEPENDS "${file}" VERBATIM)
  add_library(${name} STATIC ${made})
  target_link_libraries(${name} PUBLIC PkgConfig::THRIFT)
  target_include_directories(${name} SYSTEM PUBLIC "${folder}")
  target_compile_features(${name} PUBLIC cxx_std_20)
  if(HOLLOWMERE_SANITIZE)
    target_compile_options(${name} PRIVATE -fsanitize=${HOLLOWMERE_SANITIZE} -fno-omit-frame-pointer)
  endif()
endfunction()
