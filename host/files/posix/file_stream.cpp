#include "host/files/file_stream.h"

namespace host {

std::FILE* FileStream::CreateOwnFile(const std::filesystem::path& path) {
  return std::fopen(path.c_str(), "wbe");  // e: closed in programs that this one starts
}

}  // namespace host
