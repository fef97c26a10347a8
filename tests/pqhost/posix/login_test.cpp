// Where the AMT module's login is taken from.
#include "host/pqhost/login.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>

#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

class LoginSourceTest : public testing::Test {
 protected:
  /// A file for --amt-login that is its owner's alone.
  void GiveFile(const std::string& bytes) {
    folder.Write("login", bytes);
    options.amtLogin = folder.Path() / "login";
    std::filesystem::permissions(*options.amtLogin, std::filesystem::perms::owner_read |
                                                        std::filesystem::perms::owner_write);
  }

  /// All that the module gets to read.
  static std::string ReadAll(LoginPrompt& prompt) {
    std::string text;
    for (int c = prompt.ReadCharacter(); c != EOF; c = prompt.ReadCharacter()) {
      text += static_cast<char>(c);
    }
    return text;
  }

  test::TemporaryFolder folder;
  SourceOptions options;
  std::ostringstream out;
  std::ostringstream error;
  Console console{.programName = "pqhost", .out = out, .error = error};
};

TEST_F(LoginSourceTest, IsTheFileThatIsGiven) {
  GiveFile("192.0.2.9 keeper L\xFFntern-52");  // a byte that looks like the end
  console.inIsTerminal = true;
  LoginPrompt prompt = MakeLoginPrompt(options, console);
  EXPECT_EQ(ReadAll(prompt), "192.0.2.9 keeper L\xFFntern-52\n");
  EXPECT_EQ(prompt.WhyNoLogin(), "the file of --amt-login has none that it takes");
}

TEST_F(LoginSourceTest, IsWarnedOfOnStandardError) {
  GiveFile("192.0.2.9 keeper a&b\n");
  LoginPrompt prompt = MakeLoginPrompt(options, console);
  ReadAll(prompt);
  EXPECT_THAT(error.str(), testing::StartsWith("pqhost: "));
  EXPECT_THAT(error.str(), HasSubstr("holds &"));
}

TEST_F(LoginSourceTest, IsNoFileThatIsLargerThanALogin) {
  GiveFile(std::string(4096, 'x'));
  EXPECT_NO_THROW(MakeLoginPrompt(options, console));
  GiveFile(std::string(4097, 'x'));
  EXPECT_THAT([&] { MakeLoginPrompt(options, console); },
              ThrowsMessage<UsageError>(HasSubstr("too large for a line ADDRESS USER PASSWORD")));
}

TEST_F(LoginSourceTest, IsNobodyWhereNobodyCanAnswer) {
  LoginPrompt unattended = MakeLoginPrompt(options, console);
  EXPECT_EQ(ReadAll(unattended), "");
  EXPECT_THAT(unattended.WhyNoLogin(), HasSubstr("standard input is no console"));

  console.inIsTerminal = true;
  options.asksNobody = true;
  LoginPrompt unasked = MakeLoginPrompt(options, console);
  EXPECT_EQ(ReadAll(unasked), "");
  EXPECT_EQ(unasked.WhyNoLogin(), "--no-input");
}

}  // namespace
}  // namespace host
