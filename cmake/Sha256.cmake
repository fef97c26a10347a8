# SHA-256 by Nettle or, on Windows, by the system's cryptography library, loaded when it is needed.
add_library(pq_sha256 INTERFACE)
if(NOT WIN32)
  # The archive: as a shared library it costs every start of a program 0.1 ms, and OpenSSL 0.8 ms.
  find_library(NETTLE libnettle.a REQUIRED)
  pq_link_archive(pq_sha256 ${NETTLE} nettle)
endif()
