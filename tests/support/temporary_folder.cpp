#include "tests/support/temporary_folder.h"

#include <fstream>
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

}  // namespace test
