# Deflate, for recordings that are one ZIP file.
add_library(pq_zlib INTERFACE)
if(MSVC)
  find_package(ZLIB REQUIRED)
  target_link_libraries(pq_zlib INTERFACE ZLIB::ZLIB)
else()
  # The archive: no further library has to be found at the start of the program, or shipped with it.
  find_library(ZLIB_ARCHIVE libz.a REQUIRED)
  pq_link_archive(pq_zlib ${ZLIB_ARCHIVE} z)
endif()
