#include "frame/attachment.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/support/log_lines.h"
#include "tests/support/refused_allocation.h"

namespace {

constexpr pq::ModuleLog kLog{"pqmodules/test"};

/// A file of the given lines whose stored bytes are as many as `size` says.
class LinesFile final : public pq::TextFile {
 public:
  LinesFile(std::vector<std::string> lines, std::uint64_t size)
      : lines(std::move(lines)), size(size) {}
  bool ReadLine(char* buffer, std::size_t room) override {
    if (next == lines.size()) return false;
    const std::string& line = lines[next++];
    EXPECT_LT(line.size(), room);
    std::memcpy(buffer, line.c_str(), line.size() + 1);
    return true;
  }
  void Rewind() override { next = 0; }
  std::uint64_t SizeAndRewind() override {
    Rewind();
    return size;
  }

 private:
  std::vector<std::string> lines;
  std::size_t next = 0;
  std::uint64_t size;
};

TEST(Attachment, HoldsAllLinesOfTheFile) {
  LinesFile file({"one\n", "\n", "three"}, 10);
  EXPECT_STREQ(pq::ReadWholeReport(kLog, file).get(), "one\n\nthree");
}

TEST(Attachment, IsEmptyForAnEmptyFile) {
  LinesFile file({}, 0);
  EXPECT_STREQ(pq::ReadWholeReport(kLog, file).get(), "");
}

TEST(Attachment, LogsTheSizeOfTheStoredBytes) {
  const test::LogLines log;
  LinesFile file({"one\n", "two\n"}, 10);
  pq::ReadWholeReport(kLog, file);
  EXPECT_EQ(log.texts, std::vector<std::string>{"4 [repo] Size:10"});
}

TEST(Attachment, GoesOnBehindALineThatEndsAtANul) {
  using std::string_literals::operator""s;
  LinesFile file({"on\0e\n"s, "two\n"}, 9);
  EXPECT_STREQ(pq::ReadWholeReport(kLog, file).get(), "ontwo\n");
}

TEST(Attachment, StaysInItsMemoryWhenTheFileHasGrown) {
  LinesFile file({"one\n", "two\n", "three\n"}, 6);
  EXPECT_STREQ(pq::ReadWholeReport(kLog, file).get(), "one\ntw");
}

TEST(Attachment, SaysWhenThereIsNoMemory) {
  const test::LogLines log;
  LinesFile file({"one\n"}, 4711);
  const test::RefusedAllocation refused(4712);
  EXPECT_EQ(pq::ReadWholeReport(kLog, file), nullptr);
  EXPECT_EQ(log.texts, (std::vector<std::string>{"4 [repo] Size:4711", "4 [repo] Malloc failed!"}));
}

TEST(Attachment, SaysThatNoMemoryHoldsMoreBytesThanThereAreAddresses) {
  const test::LogLines log;
  LinesFile file({"one\n"}, UINT64_MAX);
  EXPECT_EQ(pq::ReadWholeReport(kLog, file), nullptr);
  EXPECT_EQ(log.texts.back(), "4 [repo] Malloc failed!");
}

}  // namespace
