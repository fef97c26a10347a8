# Guards in the programs and libraries that are shipped: they run as administrator and read what
# strangers send. scripts/check_binaries.sh reads them back from what was built.
#
#   pq_harden(TARGET)                      its own code and what it is linked to
#   pq_describe(TARGET FILE DESCRIPTION)   what Windows shows of its file
#
# The sanitizers have stronger ones, so clang's builds do without.
add_library(pq_hardening INTERFACE)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  set(is_program $<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>)
  set(is_shared $<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>)
  target_compile_options(pq_hardening INTERFACE
    -fstack-protector-strong -fcf-protection -ftrivial-auto-var-init=zero
    -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -D_GLIBCXX_ASSERTIONS)
  if(MINGW)
    # The guards' own functions, as an archive: the shared library would have to be shipped, too.
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libssp.a
                    OUTPUT_VARIABLE libssp OUTPUT_STRIP_TRAILING_WHITESPACE)
    target_link_libraries(pq_hardening INTERFACE ${libssp})
    target_link_options(pq_hardening INTERFACE
      -Wl,--dynamicbase,--high-entropy-va,--nxcompat)
  else()
    # For Windows the compiler always touches each page of the stack, and this flag breaks it there.
    target_compile_options(pq_hardening INTERFACE -fstack-clash-protection
                                                  $<$<NOT:${is_shared}>:-fPIE>)
    target_link_options(pq_hardening INTERFACE -Wl,-z,relro,-z,now,-z,noexecstack
                                               $<${is_program}:-pie>)
  endif()
endif()
# The same sources give the same bytes, whenever and wherever they are built.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(pq_hardening INTERFACE -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
endif()
if(MINGW)
  target_link_options(pq_hardening INTERFACE -Wl,--no-insert-timestamp)
endif()

function(pq_harden target)
  target_link_libraries(${target} PRIVATE pq_hardening)
endfunction()

if(WIN32)
  enable_language(RC)
  # The version is that of host/text/version.h.
  set(version_header ${PROJECT_SOURCE_DIR}/host/text/version.h)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${version_header})
  file(STRINGS ${version_header} line REGEX "kVersion")
  string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+" pq_version "${line}")
  if(NOT pq_version)
    message(FATAL_ERROR "${version_header} has no version such as 1.2.3")
  endif()
endif()

function(pq_describe target file description)
  if(NOT WIN32)
    return()
  endif()
  string(REPLACE "." "," numbers "${pq_version}.0")
  cmake_path(GET file STEM LAST_ONLY name)
  cmake_path(GET file EXTENSION LAST_ONLY extension)
  if(extension STREQUAL ".exe")
    set(type 1)
    set(manifest ${PROJECT_SOURCE_DIR}/cmake/program.manifest)
  else()
    set(type 2)
  endif()
  set(manifest_line "")
  if(manifest AND MINGW)
    set(manifest_line "1 24 \"${manifest}\"")
  elseif(manifest)
    target_sources(${target} PRIVATE ${manifest})
  endif()
  set(resource ${PROJECT_BINARY_DIR}/resources/${name}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/resource.rc.in ${resource} @ONLY)
  # Its own library: the compiler's options are none for the resource compiler.
  add_library(${target}_resource OBJECT ${resource})
  target_link_libraries(${target} PRIVATE ${target}_resource)
  if(manifest)
    set_source_files_properties(${resource} PROPERTIES OBJECT_DEPENDS ${manifest})
  endif()
endfunction()
