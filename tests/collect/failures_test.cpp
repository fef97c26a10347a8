// What counts as "could not be collected", and how it is told.

#include "host/collect/failures.h"

#include <gtest/gtest.h>

#include <string>

#include "host/collect/command_text.h"

namespace host {
namespace {

bool Reports(const std::string& text, unsigned level = 4) {
  return ReportsFailure({level, "pqmodules/rbmcinfo", 1, "[repo] " + text});
}

TEST(Failures, AreWhatModulesSayOfProcessesPipesAndFiles) {
  for (const char* text :
       {"CreateProcess failed (5)", "CreateProcess failed(5)",
        "CreateProcess failed in getting route(2)", "Failed to create pipe for arp info",
        "Create Pipe failed", "Failed to open raid log file", "Failed to open file!",
        "GetExitCodeProcess() failed: 6", "Malloc failed!", "Get AMT IP failed"}) {
    EXPECT_TRUE(Reports(text)) << text;
  }
}

TEST(Failures, AreAllErrorsOfLevel1) {
  EXPECT_TRUE(Reports("check_amt_bmc bmc command meets error", 1));
  EXPECT_FALSE(Reports("check_amt_bmc bmc command meets error", 3));
}

TEST(Failures, AreNotWhatAMachineLacks) {
  EXPECT_FALSE(Reports("Failed to open PMC Controller file"));
  EXPECT_FALSE(Reports("has no BMC, return 4", 3));
  EXPECT_FALSE(Reports("Has no AMT, return 1", 3));
}

TEST(Failures, AreNotProgressOrDumps) {
  EXPECT_FALSE(Reports("Enter EnumBMCInstances", 3));
  EXPECT_FALSE(Reports("the tool says: CreateProcess failed (5)"));
  EXPECT_FALSE(Reports(""));
}

TEST(Failures, NameModuleAndTool) {
  FailureList list;
  list.Module("Windows_Related_Info", "");
  list.OnProcess("cmd.exe", "/c route print >\"C:\\logs\\route.txt\"", true, false);
  list.Log({3, "f", 1, "[repo] CreateProcess failed in getting route(5)"});
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].module, "Windows_Related_Info");
  EXPECT_EQ(list.Failures()[0].tool, "route");
  EXPECT_EQ(list.Failures()[0].text, "CreateProcess failed in getting route(5)");
}

TEST(Failures, NameNoToolWhereNoneWasTried) {
  FailureList list;
  list.Module("A", "");
  list.OnProcess("cmd.exe", "/c route print", true, false);
  list.Log({3, "f", 1, "[repo] Failed to create pipe for arp info"});
  list.Module("B", "");
  list.Log({4, "f", 1, "[repo] Failed to open raid log file"});
  ASSERT_EQ(list.Failures().size(), 2U);
  EXPECT_EQ(list.Failures()[0].tool, "");
  EXPECT_EQ(list.Failures()[1].tool, "");
}

TEST(Failures, NameAToolThatTheHostEnded) {
  FailureList list;
  list.Module("A", "");
  list.OnProcess("cmd.exe", "/c arp.exe -a", true, true);
  list.OnToolEnded(30);
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].tool, "arp.exe");
  EXPECT_EQ(list.Failures()[0].text, "did not end by itself and was ended after 30 s");
}

TEST(Failures, NameARecordedToolThatAHostEnded) {
  FailureList list;
  list.Module("A", "");
  list.OnProcess("cmd.exe", "/c arp.exe -a", true, true);
  list.OnToolEnded(0);
  list.OnToolRefused(0);
  ASSERT_EQ(list.Failures().size(), 2U);
  EXPECT_EQ(list.Failures()[0].text, "did not end by itself and was ended");
  EXPECT_EQ(list.Failures()[1].text, "was not started again, because it had been ended");
}

TEST(Failures, NameAToolThatIsNotStartedAgainOnce) {
  FailureList list;
  CollectionListeners listeners;
  listeners.Add(list);
  listeners.Module("A", "");
  for (int i = 0; i < 2; ++i) {
    listeners.OnProcess("cmd.exe", "/c storcli.exe show", true, false);
    listeners.OnToolRefused(30);
    listeners.Log({4, "f", 1, "[repo] CreateProcess failed (1223)"});
    listeners.Log({1, "f", 1, "[repo] an error that follows from it"});
  }
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].tool, "storcli.exe");
  EXPECT_EQ(list.Failures()[0].text, "was not started again, because it had been ended after 30 s");
}

TEST(Failures, AreToldAgainAfterAToolThatIsNotStartedAgain) {
  FailureList list;
  list.Module("A", "");
  list.OnProcess("cmd.exe", "/c storcli.exe show", true, false);
  list.OnToolRefused(30);
  list.Log({3, "f", 1, "[repo] Failed to create pipe for arp info"});
  list.OnProcess("cmd.exe", "/c route print", true, false);
  list.Log({4, "f", 1, "[repo] CreateProcess failed (5)"});
  ASSERT_EQ(list.Failures().size(), 3U);
  EXPECT_EQ(list.Failures()[1].text, "Failed to create pipe for arp info");
  EXPECT_EQ(list.Failures()[2].text, "CreateProcess failed (5)");
}

TEST(Failures, NameAToolThatWantedMoreMemory) {
  FailureList list;
  CollectionListeners listeners;
  listeners.Add(list);
  listeners.Module("A", "");
  listeners.OnProcess("cmd.exe", "/c arp.exe -a", true, true);
  listeners.OnToolOutOfMemory(64);
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].tool, "arp.exe");
  EXPECT_EQ(list.Failures()[0].text,
            "wanted more memory than its limit of 64 MiB; what it printed may not be whole");
}

TEST(Failures, AreNoMissingProgramsWhereTheyAnsweredSomethingElse) {
  FailureList list;
  list.FindMissingPrograms([](const std::string& line) { return line.ends_with("bmc"); });
  list.Module("AMT_Info", "");
  list.OnProcess("cmd.exe", R"(/c "C:\H\pq_tools\check_amt_bmc.exe" amt)", true, false);
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].text,
            "the program is missing, so it is not known whether the machine has AMT");
  list.OnProcess("cmd.exe", R"(/c "C:\H\pq_tools\check_amt_bmc.exe" bmc)", true, false);
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].text,
            "the recording has no such answer, so it is not known whether the machine has AMT");
}

TEST(Failures, TellOfALoginThatNobodyGave) {
  FailureList list;
  CollectionListeners listeners;
  listeners.Add(list);
  listeners.Module("AMT_Info", "");
  listeners.OnProcess("cmd.exe", "/c check_amt_bmc.exe amt", false, false);
  listeners.OnNoLogin("--no-input");
  listeners.OnNoLogin("--no-input");
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].module, "AMT_Info");
  EXPECT_EQ(list.Failures()[0].tool, "");
  EXPECT_EQ(list.Failures()[0].text,
            "asked for a login and got none, so its log is not collected: --no-input");
}

TEST(Failures, NameTheToolWhoseCommandLineWasTooLong) {
  FailureList list;
  list.Module("sampleModule2", "");
  list.OnProcess("cmd.exe", "/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\r.txt\"\"", false,
                 false);
  list.OnProcessEnd(0);
  list.Log({4, "f", 1, "[repo] CreateProcess failed (206)"});
  list.Log({4, "f", 1,
            "[repo] eventslog_convert raw path:/c \"\"C:\\H\\pq_tools\\eventslog_convert.exe\" x"});
  list.Log({4, "f", 1, "[repo] CreateProcess failed (206)"});
  ASSERT_EQ(list.Failures().size(), 2U);
  EXPECT_EQ(list.Failures()[0].tool, "storcli.exe");
  EXPECT_EQ(list.Failures()[1].tool, "eventslog_convert.exe");
}

TEST(Failures, NameTheToolThatTheSystemFindsTooLong) {
  FailureList list;
  list.Module("sampleModule2", "");
  list.OnProcess("cmd.exe", "/c \"C:\\H\\utilities\\lsi\\sas2ircu.exe\" 0", false, false);
  list.Log({4, "f", 1, "[repo] CreateProcess failed (206)"});
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].tool, "sas2ircu.exe");
}

TEST(Failures, NameTheToolThatLeavesTheFile) {
  FailureList list;
  list.Module("sampleModule1", "");
  list.OnProcess("cmd.exe", "/c \"copy \"c:\\Support\\Firmware\" \"C:\\l\"\"", false, false);
  list.Log({4, "f", 1, "[repo] Failed to open Controller_1_Log.txt file!"});
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].tool, "arcconf.exe");
}

TEST(Failures, TellOfAMissingProgramOnceForAllThatItLooksFor) {
  FailureList list;
  list.FindMissingPrograms([](const std::string&) { return false; });
  const auto test = [&](const std::string& module, const std::string& device) {
    list.Module(module, "");
    list.OnProcess("cmd.exe", "/c \"C:\\H\\pq_tools\\check_amt_bmc.exe\" " + device, false, false);
  };
  test("BMC_Info", "bmc");
  test("AMT_Info", "amt");
  test("AMT_Info", "amt");
  ASSERT_EQ(list.Failures().size(), 1U);
  EXPECT_EQ(list.Failures()[0].module, "BMC_Info and AMT_Info");
  EXPECT_EQ(list.Failures()[0].text,
            "the program is missing, so it is not known whether the machine has a BMC or AMT");
}

TEST(Failures, AreNotWhatAnInterruptionRefuses) {
  FailureList list;
  list.Module("A", "");
  list.OnRefused();
  list.Log({3, "f", 1, "[repo] Failed to create pipe for arp info"});
  EXPECT_TRUE(list.Failures().empty());
}

TEST(CommandText, FindsTheProgram) {
  EXPECT_EQ(FindTool("/c netstat.exe"), "netstat.exe");
  EXPECT_EQ(FindTool("/c route print >\"C:\\Halyard\\logs\\route.txt\""), "route");
  EXPECT_EQ(FindTool("/c \"C:\\Program Files\\H\\pq_tools\\check_amt_bmc.exe\" bmc"),
            "check_amt_bmc.exe");
  EXPECT_EQ(FindTool("/c \"\"C:\\H\\utilities\\lsi\\storcli.exe\" /c0 show > \"C:\\l\\x.txt\"\""),
            "storcli.exe");
  EXPECT_EQ(FindTool("/c \"copy \"c:\\Support\\Firmware\" \"C:\\logs\\Firmware\"\""), "copy");
  EXPECT_EQ(FindTool("/c \"C:\\H\\utilities\\arcconf\\arcconf.exe savesupportarchive c:\\\""),
            "arcconf.exe");
  EXPECT_EQ(FindTool("/c copy C:\\Windows\\hosts \"C:\\logs\\hosts.txt\" > nul \""), "copy");
}

TEST(CommandText, LeavesArgumentsOut) {
  EXPECT_EQ(FindTool("/c \"\"C:\\H\\pq_tools\\amt_log.exe\" 10.0.0.5 admin secret>\"C:\\l.txt\"\""),
            "amt_log.exe");
}

TEST(CommandText, FindsTheTargetOfTheOutput) {
  EXPECT_EQ(FindTarget("/c route print >\"C:\\Halyard\\logs\\route.txt\""),
            "C:\\Halyard\\logs\\route.txt");
  EXPECT_EQ(FindTarget("/c \"\"C:\\H\\lsi\\storcli.exe\" /c0 show > \"C:\\l\\x.txt\"\""),
            "C:\\l\\x.txt");
  EXPECT_EQ(FindTarget("/c \"C:\\H\\sas2ircu.exe\" 0 logir upload > logir.log"), "logir.log");
  EXPECT_EQ(FindTarget("/c arp.exe -a"), "");
}

TEST(CommandText, FindsNothingInNothing) {
  EXPECT_EQ(FindTool(""), "");
  EXPECT_EQ(FindTool("/c "), "");
  EXPECT_EQ(FindTool("/c \"\""), "");
}

}  // namespace
}  // namespace host
