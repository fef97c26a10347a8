#include "tests/support/host_run.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <stdexcept>

#include "host/pqhost/pqhost.h"
#include "tests/support/collected.h"

namespace test {

namespace fs = std::filesystem;

HostRun RunHost(const std::vector<std::string>& arguments, const HostTerminal& terminal) {
  std::ostringstream out;
  std::ostringstream error;
  const host::Console console{
      out, error, terminal.out, terminal.error, terminal.colors, terminal.width, fs::path()};
  HostRun run;
  run.exitCode = host::RunPqhost(arguments, console);
  run.out = out.str();
  run.error = error.str();
  return run;
}

std::string Sample(const std::string& name) { return SamplesFolder() + "/" + name; }

TemporaryFolder::TemporaryFolder()
    : path(fs::temp_directory_path() / ("pq_tests_" + std::to_string(std::random_device{}()))) {
  if (!fs::create_directories(path)) throw std::runtime_error("not a folder of its own");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

std::string TemporaryFolder::operator/(const std::string& name) const {
  const std::u8string text = (path / fs::path(std::u8string(name.begin(), name.end()))).u8string();
  return {text.begin(), text.end()};
}

std::vector<std::string> TemporaryFolder::Files() const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
    if (!entry.is_regular_file()) continue;
    const std::u8string name = entry.path().lexically_relative(path).generic_u8string();
    names.emplace_back(name.begin(), name.end());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string ReadWholeFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteWholeFile(const fs::path& path, const std::string& content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace test
