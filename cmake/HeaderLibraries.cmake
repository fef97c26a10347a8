# Header-only libraries. Debian keeps them among the system's own headers, which a cross compiler
# must not see: it gets a folder of links to just these. The plug-in takes Boost and nothing else.
set(PQ_HEADER_ROOT "/usr/include" CACHE PATH "Folder that holds boost, CLI, nlohmann and fmt")

function(pq_header_library target folder)
  if(NOT EXISTS ${PQ_HEADER_ROOT}/${folder})
    message(FATAL_ERROR "${PQ_HEADER_ROOT}/${folder} is missing: install the library's headers, "
                        "or set PQ_HEADER_ROOT to the folder that holds them")
  endif()
  set(links ${PROJECT_BINARY_DIR}/headers/${target})
  file(MAKE_DIRECTORY ${links})
  file(CREATE_LINK ${PQ_HEADER_ROOT}/${folder} ${links}/${folder} SYMBOLIC COPY_ON_ERROR)
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE ${links})
endfunction()

pq_header_library(pq_boost boost)
pq_header_library(pq_cli11 CLI)
pq_header_library(pq_json nlohmann)
pq_header_library(pq_fmt_headers fmt)
add_library(pq_fmt STATIC EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/fmt.cpp)
target_link_libraries(pq_fmt PUBLIC pq_fmt_headers)
pq_harden(pq_fmt)
