#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace test {

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path = std::filesystem::temp_directory_path() / ("pq_test_" + std::to_string(random()));
  } while (!std::filesystem::create_directories(path));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  std::filesystem::remove_all(path, error);
}

void TemporaryFolder::Write(const std::string& name, std::string_view bytes) const {
  const std::filesystem::path file = path / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error(file.string() + " cannot be written");
}

std::string TemporaryFolder::Read(const std::string& name) const {
  std::ifstream in(path / name, std::ios::binary);
  if (!in) throw std::runtime_error(name + " cannot be read");
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string TemporaryFolder::operator/(const std::string& name) const {
  const std::filesystem::path inside(std::u8string(name.begin(), name.end()));
  const std::u8string text = (path / inside).u8string();
  return {text.begin(), text.end()};
}

std::vector<std::string> TemporaryFolder::Files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
    if (!entry.is_regular_file()) continue;
    const std::u8string name = entry.path().lexically_relative(path).generic_u8string();
    names.emplace_back(name.begin(), name.end());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace test
