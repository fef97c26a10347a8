# SHA-256 by the system's cryptography library.
add_library(pq_sha256 INTERFACE)
if(WIN32)
  target_link_libraries(pq_sha256 INTERFACE bcrypt)
else()
  find_package(OpenSSL REQUIRED COMPONENTS Crypto)
  target_link_libraries(pq_sha256 INTERFACE OpenSSL::Crypto)
endif()
