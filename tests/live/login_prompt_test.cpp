// The login for the AMT module: who is asked, what is warned of, and what is said when nobody
// answers.

#include "host/live/login_prompt.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <vector>

namespace host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A prompt that reads `typed`.
struct Conversation {
  Conversation(std::string typed, bool isPerson)
      : typed(std::move(typed)),
        prompt(
            [this] {
              return next < this->typed.size() ? static_cast<unsigned char>(this->typed[next++])
                                               : EOF;
            },
            isPerson, [this](const std::string& line) { warnings.push_back(line); },
            "the file is empty") {}

  /// What the module gets as one line.
  std::string ReadLine() {
    std::string line;
    for (int c = prompt.ReadCharacter(); c != EOF; c = prompt.ReadCharacter()) {
      line += static_cast<char>(c);
      if (c == '\n') break;
    }
    return line;
  }

  std::string typed;
  std::size_t next = 0;
  std::vector<std::string> warnings;
  LoginPrompt prompt;
};

TEST(LoginsForTheInterpreter, AreNamedByTheCharactersThatItTakes) {
  EXPECT_EQ(FindInterpreterCharacters("192.0.2.9 keeper a&inj\n"), "&");
  EXPECT_EQ(FindInterpreterCharacters("192.0.2.9 k|e %\"<>^&\n"), "& | < > ^ % \"");
  EXPECT_EQ(FindInterpreterCharacters("192.0.2.9 keeper Lantern-52!$()\n"), "");
  // Neither a login, nor a word of it.
  EXPECT_EQ(FindInterpreterCharacters("192.0.2.9 a&b\n"), "");
  EXPECT_EQ(FindInterpreterCharacters("192.0.2.9 keeper Lantern-52 a&b\n"), "");
}

TEST(LoginOfAPerson, IsHandedOutAsTyped) {
  Conversation talk("192.0.2.9\n\xE4 b c\n\n", true);
  EXPECT_EQ(talk.ReadLine(), "192.0.2.9\n");
  EXPECT_EQ(talk.ReadLine(), "\xE4 b c\n");
  EXPECT_EQ(talk.ReadLine(), "\n");
  EXPECT_EQ(talk.ReadLine(), "");
  EXPECT_THAT(talk.warnings, IsEmpty());
  EXPECT_EQ(talk.prompt.WhyNoLogin(), "");
}

TEST(LoginOfAPerson, WithASignOfTheInterpreterIsUsedWhenTypedTwice) {
  Conversation talk("h u a&inj\nh u b|c\nh u b|c\n", true);
  EXPECT_EQ(talk.ReadLine(), "h u b|c\n");
  EXPECT_THAT(talk.warnings, ElementsAre(AllOf(HasSubstr("holds & which"),
                                               HasSubstr("type it again"), Not(HasSubstr("inj"))),
                                         HasSubstr("holds | which")));
}

TEST(LoginOfAPerson, MayBeAnotherAfterTheWarning) {
  Conversation talk("h u a&inj\nh u plain\n", true);
  EXPECT_EQ(talk.ReadLine(), "h u plain\n");
  Conversation declined("h u a&inj\n\n", true);
  EXPECT_EQ(declined.ReadLine(), "\n");
  Conversation ended("h u a&inj\n", true);
  EXPECT_EQ(ended.ReadLine(), "");
  EXPECT_EQ(ended.ReadLine(), "");
}

TEST(LoginOfAFile, IsWarnedOfAndUsed) {
  Conversation talk("h u a&inj\r\n", false);
  EXPECT_EQ(talk.ReadLine(), "h u a&inj\r\n");
  EXPECT_THAT(talk.warnings, ElementsAre(Not(HasSubstr("type it again"))));
  EXPECT_EQ(talk.prompt.WhyNoLogin(), "");
}

TEST(LoginOfAFile, ThatEndsTooEarlyIsTold) {
  Conversation talk("192.0.2.9", false);
  EXPECT_EQ(talk.ReadLine(), "192.0.2.9\n");
  EXPECT_EQ(talk.prompt.WhyNoLogin(), "");
  EXPECT_EQ(talk.ReadLine(), "");
  EXPECT_EQ(talk.prompt.WhyNoLogin(), "the file is empty");
}

TEST(LoginOfNobody, IsToldAndNotWaitedFor) {
  LoginPrompt prompt(nullptr, false, nullptr, "--no-input");
  EXPECT_EQ(prompt.WhyNoLogin(), "");
  EXPECT_EQ(prompt.ReadCharacter(), EOF);
  EXPECT_EQ(prompt.WhyNoLogin(), "--no-input");
}

}  // namespace
}  // namespace host
