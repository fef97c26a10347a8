// Who else may read a file with a login.
#include <gmock/gmock.h>

#include <filesystem>
#include <sstream>

#include "host/pqhost/login.h"
#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(LoginAccess, IsItsOwnersAlone) {
  using std::filesystem::perms;
  const test::TemporaryFolder folder;
  folder.Write("login", "192.0.2.9 keeper Lantern-52\n");
  std::ostringstream out;
  std::ostringstream error;
  const Console console{.programName = "pqhost", .out = out, .error = error};
  SourceOptions options;
  options.amtLogin = folder.Path() / "login";
  for (const perms others : {perms::group_read, perms::others_read}) {
    std::filesystem::permissions(*options.amtLogin, perms::owner_read | others);
    EXPECT_THAT([&] { MakeLoginPrompt(options, console); },
                testing::ThrowsMessage<UsageError>(testing::HasSubstr("may be read by others")));
  }
  std::filesystem::permissions(*options.amtLogin, perms::owner_read);
  EXPECT_NO_THROW(MakeLoginPrompt(options, console));
}

}  // namespace
}  // namespace host
