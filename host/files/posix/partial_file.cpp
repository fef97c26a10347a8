#include "host/files/partial_file.h"

#include <unistd.h>

#include <cstdio>

namespace host {

bool MoveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to) {
  return std::rename(from.c_str(), to.c_str()) == 0;
}

void UnlinkFile(const char* path) { unlink(path); }

}  // namespace host
