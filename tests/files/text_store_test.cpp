// Texts that together are too large for memory.
#include "host/files/text_store.h"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/text/path_text.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::size_t kSize = TextStore::kShortest;

std::string MakeText(char c, std::size_t size = kSize) { return std::string(size, c); }

class TextStoreTest : public testing::Test {
 protected:
  const test::TemporaryFolder folder;
  TextStore store{2 * kSize, folder.Path()};
};

TEST_F(TextStoreTest, KeepsTextsInMemoryUntilTheyAreTooMany) {
  std::vector<Bytes> texts;
  for (const char c : {'a', 'b', 'c', 'd'}) texts.push_back(store.Keep(MakeText(c)));
  EXPECT_EQ(store.InMemory(), 2 * kSize);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(texts[i], MakeText(static_cast<char>('a' + i)));
  }
  EXPECT_EQ(store.TakeProblem(), "");
}

TEST_F(TextStoreTest, HasRoomAgainWhenTextsAreGone) {
  Bytes text = store.Keep(MakeText('a', 2 * kSize));
  Bytes copy = text;
  text = store.Keep(MakeText('b'));
  EXPECT_EQ(store.InMemory(), 2 * kSize) << "a copy of the first is still there";
  text = copy;
  text.clear();
  EXPECT_EQ(store.InMemory(), 2 * kSize);
  copy.clear();
  EXPECT_EQ(store.InMemory(), 0U);
  text = store.Keep(MakeText('c'));
  EXPECT_EQ(store.InMemory(), kSize);
}

TEST_F(TextStoreTest, LeavesNoFile) {
  std::vector<Bytes> texts;
  for (int i = 0; i < 5; ++i) texts.push_back(store.Keep(MakeText('a')));
  texts.clear();
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST_F(TextStoreTest, KeepsTextsThatOutliveIt) {
  Bytes inMemory;
  Bytes inFile;
  {
    TextStore passing(kSize, folder.Path());
    inMemory = passing.Keep(MakeText('a'));
    inFile = passing.Keep(MakeText('b'));
  }
  EXPECT_EQ(inMemory, MakeText('a'));
  EXPECT_EQ(inFile, MakeText('b'));
}

TEST_F(TextStoreTest, LeavesShortTextsWhereTheyAre) {
  TextStore none(0, folder.Path());
  EXPECT_FALSE(none.Keep(MakeText('a', kSize - 1)).IsElsewhere());
  EXPECT_FALSE(none.Keep({}).IsElsewhere());
  EXPECT_TRUE(none.Keep(MakeText('a')).IsElsewhere());
  EXPECT_EQ(none.InMemory(), 0U);
}

TEST_F(TextStoreTest, KeepsAllInMemoryWithoutALimit) {
  TextStore unlimited;
  EXPECT_EQ(unlimited.Keep(MakeText('a')), MakeText('a'));
  EXPECT_EQ(unlimited.TakeProblem(), "");
}

TEST_F(TextStoreTest, KeepsATextOnce) {
  const Bytes text = store.Keep(MakeText('a'));
  EXPECT_TRUE(store.Keep(text).SharesWith(text));
  EXPECT_EQ(store.InMemory(), kSize);
}

TEST_F(TextStoreTest, KeepsInMemoryWhatTheFolderDoesNotTakeAndTells) {
  const std::filesystem::path missing = folder.Path() / "missing";
  TextStore none(0, missing);
  const Bytes text = none.Keep(MakeText('a'));
  EXPECT_EQ(text, MakeText('a'));
  EXPECT_THAT(
      none.TakeProblem(),
      AllOf(HasSubstr("the folder for temporary files, " + PathText(missing) + ", takes no more: "),
            HasSubstr("Give the folder room, or name another one in T")));
  EXPECT_EQ(none.TakeProblem(), "");
  TextStore nowhere(0, {});
  EXPECT_EQ(nowhere.Keep(MakeText('a')), MakeText('a'));
  EXPECT_THAT(nowhere.TakeProblem(),
              HasSubstr("the folder for temporary files takes no more: the system names none;"));
}

TEST_F(TextStoreTest, CountsTextsOfSeveralThreads) {
  constexpr int kThreads = 4;
  constexpr int kTexts = 100;
  TextStore shared(kThreads * kSize, folder.Path());
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&shared, i] {
        const std::string text = MakeText(static_cast<char>('a' + i));
        for (int j = 0; j < kTexts; ++j) EXPECT_EQ(shared.Keep(text), text);
      });
    }
  }
  EXPECT_EQ(shared.InMemory(), 0U);
}

}  // namespace
}  // namespace host
