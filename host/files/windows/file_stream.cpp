#include "host/files/file_stream.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

namespace host {

std::FILE* FileStream::CreateOwnFile(const std::filesystem::path& path) {
  const int file = _wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT,
                          _S_IREAD | _S_IWRITE);
  return file < 0 ? nullptr : _fdopen(file, "wb");
}

}  // namespace host
