#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

/// What the program beside this one prints.
std::string RunRepeatCollections(const std::string& count) {
  const std::filesystem::path folder =
      std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::string command = (folder / "repeat_collections").string() + " " + count;
  std::FILE* pipe = popen(command.c_str(), "r");
  std::array<char, 256> line{};
  const bool isRead = std::fgets(line.data(), line.size(), pipe) != nullptr;
  pclose(pipe);
  return isRead ? line.data() : "";
}

TEST(RepeatedCollections, GiveTheSameTracesAndNeverGrow) {
  // The samples a thousand times take a quarter of a minute; ./test.sh asks for that.
  const char* wanted = std::getenv("PQ_REPETITIONS");
  const std::string count = wanted == nullptr ? "20" : wanted;
  const std::string collections = std::to_string(10 * std::stoul(count));
  EXPECT_EQ(RunRepeatCollections(count), collections + " collections, 0 different, 0 bytes more\n");
}

}  // namespace
