#include "tests/support/posix/shell_command.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace test {

std::string RunShellCommand(const std::string& line) {
  std::FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + line);
  std::string written;
  std::array<char, 4096> chunk{};
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), pipe)) {
    written.append(chunk.data(), count);
  }
  if (pclose(pipe) != 0) throw std::runtime_error(line + ": " + written);
  return written;
}

std::filesystem::path FindBuiltProgram(const std::string& name) {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

}  // namespace test
