#include "host/collect/kept_log.h"

#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <vector>

namespace {

using host::KeptLog;
using host::LogLine;
using testing::ElementsAreArray;

using Line = std::tuple<unsigned, std::string, int, std::string>;

std::vector<Line> ListLines(const KeptLog& log) {
  std::vector<Line> lines;
  log.ForEach([&](const KeptLog::Line& line) {
    lines.emplace_back(line.level, line.file, line.line, line.text);
  });
  return lines;
}

TEST(KeptLog, GivesBackEveryLineInItsOrder) {
  const std::string longText(3'000'000, 'x');  // more than one piece of memory
  const std::vector<Line> lines = {{3, "pqmodules/a", 7, "first"},
                                   {4, "pqmodules/b", 8, ""},
                                   {1, "pqmodules/a", 9, std::string("a\0b", 3)},
                                   {4, "pqmodules/b", 70'000, longText},
                                   {4, "pqmodules/a", 1, "last"}};
  KeptLog log;
  for (const auto& [level, file, line, text] : lines) log.Add({level, file, line, text});
  EXPECT_THAT(ListLines(log), ElementsAreArray(lines));
  EXPECT_EQ(log.CountLines(), lines.size());
}

TEST(KeptLog, GivesBackLinesOfManyPieces) {
  KeptLog log;
  std::vector<Line> lines;
  for (int i = 0; i < 100'000; ++i) lines.emplace_back(4, "pqmodules/a", i, std::to_string(i));
  for (const auto& [level, file, line, text] : lines) log.Add({level, file, line, text});
  EXPECT_THAT(ListLines(log), ElementsAreArray(lines));
}

}  // namespace
