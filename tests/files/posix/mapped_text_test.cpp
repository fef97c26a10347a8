// Temporary files that nobody sees.
#include "host/files/mapped_text.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string ReadMappings() {
  std::ostringstream text;
  text << std::ifstream("/proc/self/maps").rdbuf();
  return text.str();
}

TEST(MappedTextTest, HasAFileWithoutAName) {
  const test::TemporaryFolder folder;
  {
    const MappedText text("report", folder.Path());
    EXPECT_EQ(text.View(), "report");
    // So none is left however the program ends.
    EXPECT_THAT(folder.Files(), IsEmpty());
    EXPECT_THAT(ReadMappings(), HasSubstr(folder.Path().string()));
  }
  EXPECT_THAT(ReadMappings(), testing::Not(HasSubstr(folder.Path().string())));
}

TEST(MappedTextTest, TellsWhyThereIsNone) {
  const test::TemporaryFolder folder;
  EXPECT_THAT([&] { MappedText("report", folder.Path() / "missing"); },
              testing::ThrowsMessage<std::runtime_error>("No such file or directory"));
  folder.Write("file", "");
  EXPECT_THAT([&] { MappedText("report", folder.Path() / "file"); },
              testing::ThrowsMessage<std::runtime_error>("Not a directory"));
}

TEST(MappedTextTest, IsWrittenAsAWholeOrNotAtAll) {
  const test::TemporaryFolder folder;
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit small{.rlim_cur = 4096, .rlim_max = before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THAT([&] { MappedText(std::string(5000, 'x'), folder.Path()); },
              testing::ThrowsMessage<std::runtime_error>("File too large"));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_THAT(folder.Files(), IsEmpty());
}

}  // namespace
}  // namespace host
