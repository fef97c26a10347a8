#include "frame/label_table.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/support/label_reference.h"

namespace {

using Labels = std::vector<std::string_view>;

pq::LabelMatch Find(const Labels& labels, std::string_view line) {
  return pq::LabelTable(labels).FindIn(line);
}

void ExpectMatch(const Labels& labels, std::string_view line, int index, std::size_t position) {
  const pq::LabelMatch match = Find(labels, line);
  EXPECT_EQ(match.index, index) << line;
  EXPECT_EQ(match.position, position) << line;
}

void ExpectAsPlainly(const Labels& labels, const pq::LabelTable& table, std::string_view line) {
  const pq::LabelMatch expected = test::FindLabelPlainly(labels, line);
  const pq::LabelMatch match = table.FindIn(line);
  ASSERT_EQ(match.index, expected.index) << line;
  ASSERT_EQ(match.position, expected.position) << line;
}

TEST(LabelTable, FindsALabelAtTheStartOfTheLine) {
  ExpectMatch({"BIOS Version =", "Bus Number ="}, "Bus Number = 60\n", 1, 0);
}

TEST(LabelTable, FindsALabelAnywhereInTheLine) {
  ExpectMatch({"BIOS Version =", "Bus Number ="}, "-> Bus Number = 60\n", 1, 3);
}

TEST(LabelTable, FindsALabelAtTheVeryEndOfTheLine) {
  ExpectMatch({"Firmware", "Driver"}, "No Driver", 1, 3);
}

TEST(LabelTable, FindsNothingInForeignText) {
  EXPECT_FALSE(Find({"Firmware", "Driver"}, "Post Prompt Timeout : 0 seconds\n"));
}

TEST(LabelTable, FindsNothingInAnEmptyLine) { EXPECT_FALSE(Find({"Firmware", "Driver"}, "")); }

TEST(LabelTable, FindsNothingWithoutLabels) { EXPECT_FALSE(Find({}, "Driver")); }

TEST(LabelTable, FindsNothingInALabelThatIsCutOff) {
  EXPECT_FALSE(Find({"Firmware", "Driver"}, "   Drive"));
}

TEST(LabelTable, TheEarlierLabelWinsAlsoWhenItStandsFurtherBehind) {
  ExpectMatch({"FW Package Build =", "FW Version ="}, "FW Version = 5 FW Package Build = 6\n", 0,
              15);
}

TEST(LabelTable, ALabelInsideAnEarlierOneIsNotTaken) {
  ExpectMatch({"Driver Name", "Driver"}, "   Driver Name : smart\n", 0, 3);
}

TEST(LabelTable, AShorterLabelThatComesFirstIsTakenInsideALongerOne) {
  ExpectMatch({"Coerced size =", "Non Coerced size ="}, "Non Coerced size = 1 TB\n", 0, 4);
}

TEST(LabelTable, GivesTheFirstOfSeveralOccurrences) {
  ExpectMatch({"Type:"}, "Disk Type: and Type: and Type:\n", 0, 5);
}

TEST(LabelTable, GivesTheFirstOfOverlappingOccurrences) {
  ExpectMatch({"=-=-=-="}, "-=-=-=-=-=-=", 0, 1);
}

TEST(LabelTable, KeepsItsOwnCopyOfTheLabels) {
  std::string label = "Locale:";
  const pq::LabelTable table({label});
  label = "Class: ";
  EXPECT_TRUE(table.FindIn("Locale: 4"));
}

TEST(LabelTable, TakesASingleCharacterAsALabel) { ExpectMatch({"Time:", "="}, "a = b", 1, 2); }

TEST(LabelTable, TellsBytesAbove127Apart) {
  ExpectMatch({"Gr\xe4"
               "e",
               "Gr\xf6\xdf"
               "e"},
              "Gr\xf6\xdf"
              "e",
              1, 0);
}

TEST(LabelTable, TheSameLabelTwiceIsTheFirst) {
  ExpectMatch({"Usage:", "State:", "State:"}, "State: Normal", 1, 0);
}

// Labels and lines of two or three letters meet in every way there is.
TEST(LabelTable, AnswersAsOneSearchPerLabelDoesOnRandomTexts) {
  std::mt19937 random(20);
  const auto text = [&](std::size_t shortest, std::size_t longest, int letters) {
    std::string made(std::uniform_int_distribution(shortest, longest)(random), ' ');
    for (char& c : made) {
      c = static_cast<char>('a' + std::uniform_int_distribution(0, letters - 1)(random));
    }
    return made;
  };
  for (int round = 0; round < 2000; ++round) {
    const int letters = 1 + round % 3;
    const std::size_t shortest = 1 + static_cast<std::size_t>(round / 3 % 5);
    std::vector<std::string> texts;
    for (int i = 0; i < 1 + round % 7; ++i) texts.push_back(text(shortest, shortest + 4, letters));
    const Labels labels(texts.begin(), texts.end());
    const pq::LabelTable table(labels);
    for (int i = 0; i < 50; ++i) ExpectAsPlainly(labels, table, text(0, 40, letters));
  }
}

// A thousand labels that begin alike, in lines made of pieces of labels.
TEST(LabelTable, AnswersAsOneSearchPerLabelDoesWithManyLabels) {
  std::mt19937 random(4);
  std::vector<std::string> texts;
  for (int i = 0; i < 1000; ++i) texts.push_back("Slot " + std::to_string(i * 7 % 1000) + " =");
  const Labels labels(texts.begin(), texts.end());
  const pq::LabelTable table(labels);
  for (int i = 0; i < 5000; ++i) {
    std::string line;
    for (int piece = 0; piece < 6; ++piece) {
      const std::string& label = texts[random() % texts.size()];
      line += label.substr(random() % 3, 4 + random() % 6);
    }
    ExpectAsPlainly(labels, table, line);
  }
}

TEST(GetTextFrom, IsEmptyBehindTheEndOfTheLine) {
  EXPECT_STREQ(pq::GetTextFrom("Driver\n", 7), "");
  EXPECT_STREQ(pq::GetTextFrom("Driver\n", 45), "");
}

TEST(GetTextFrom, IsTheRestOfTheLine) { EXPECT_STREQ(pq::GetTextFrom("ID: 0-1\n", 3), " 0-1\n"); }

}  // namespace
