#include "host/collect/unsafe_folders.h"

#include <gtest/gtest.h>

namespace host {
namespace {

struct Folder {
  const char* path;
  std::optional<char> split;
};

TEST(HostFolder, IsSplitWhereItsQuotesGo) {
  const Folder folders[] = {
      {"C:\\Halyard", std::nullopt},
      {"C:\\Halyard Host", std::nullopt},
      {"C:\\Halyard(x86)", std::nullopt},
      {"C:\\Halyard Host (x86)", ' '},
      {"C:\\R&D", '&'},
      {"C:\\R & D", ' '},
      {"C:\\a^b", '^'},
      {"C:\\a,b", ','},
      {"C:\\a;b", ';'},
      {"C:\\a=b", '='},
      {"C:\\a, b", std::nullopt},
      {"C:\\Halyard@Home", std::nullopt},
      {"C:\\Halyard @ Home", ' '},
      {"C:\\100%", '%'},
      {"C:\\100% sure", '%'},
  };
  for (const Folder& folder : folders)
    EXPECT_EQ(FindSplit(folder.path), folder.split) << folder.path;
}

TEST(HostFolder, IsObjectedToWithAReasonAndARemedy) {
  EXPECT_EQ(ObjectToHostFolder("C:\\Program Files\\Halyard"), std::nullopt);
  EXPECT_EQ(ObjectToHostFolder("C:\\R&D"),
            "C:\\R&D is cut at its first & where a tool's path alone is in quotes: another program "
            "may be started, and the tool is not found; move the program to another folder");
  EXPECT_EQ(ObjectToHostFolder("C:\\%TEMP% x"),
            "C:\\%TEMP% x has a %, and the interpreter may put the value of a variable there; move "
            "the program to another folder");
}

TEST(LogFolder, IsObjectedToForAPercentSignAlone) {
  EXPECT_EQ(ObjectToLogFolder("C:\\Program Files (x86)\\R & D^,;=\\logs\\"), std::nullopt);
  EXPECT_EQ(ObjectToLogFolder("C:\\100%\\logs\\"),
            "C:\\100%\\logs\\ has a %, and the interpreter may put the value of a variable there; "
            "choose another with --log-folder");
}

}  // namespace
}  // namespace host
