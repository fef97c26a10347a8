#include "host/recorded/interpreter.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Knows one program, by its path with quotes' content as it stands.
ProgramTest Knows(std::string_view known) {
  return [known](std::string_view path) { return path == known; };
}

const ProgramTest kKnowsAll = [](std::string_view) { return true; };
const ProgramTest kKnowsNone = [](std::string_view) { return false; };

Stage OnlyStage(std::string_view command) {
  Pipeline pipeline = ParseCommand(command);
  EXPECT_FALSE(pipeline.isMalformed) << command;
  EXPECT_EQ(pipeline.stages.size(), 1u) << command;
  return pipeline.stages.empty() ? Stage() : pipeline.stages.front();
}

TEST(QuoteRule, LeavesALineThatDoesNotBeginWithAQuote) {
  EXPECT_EQ(ApplyQuoteRule(R"(route print >"C:\logs\route.txt")", kKnowsAll),
            R"(route print >"C:\logs\route.txt")");
}

TEST(QuoteRule, KeepsTwoQuotesAroundAProgramWithABlank) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\Program Files\t.exe" amt)", Knows(R"(C:\Program Files\t.exe)")),
            R"("C:\Program Files\t.exe" amt)");
}

TEST(QuoteRule, DropsTwoQuotesWithoutABlankBetween) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\Halyard\t.exe" amt)", kKnowsAll), R"(C:\Halyard\t.exe amt)");
}

TEST(QuoteRule, DropsTwoQuotesAroundNoProgram) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\Program Files\t.exe" amt)", kKnowsNone),
            R"(C:\Program Files\t.exe amt)");
}

TEST(QuoteRule, DropsTwoQuotesWithASpecialCharacterBetween) {
  for (const char special : std::string("&<>()@^|")) {
    const std::string path = std::string("C:\\a ") + special + "\\t.exe";
    EXPECT_EQ(ApplyQuoteRule('"' + path + "\" amt", kKnowsAll), path + " amt");
  }
}

TEST(QuoteRule, KeepsTwoQuotesWithSpecialCharactersBehindThem) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\a b\t.exe" lan | findstr /c:(3))", kKnowsAll),
            R"("C:\a b\t.exe" lan | findstr /c:(3))");
}

TEST(QuoteRule, DropsTheFirstAndTheLastOfFourQuotes) {
  EXPECT_EQ(ApplyQuoteRule(R"(""C:\a b\t.exe" >"C:\logs\t.txt"")", kKnowsAll),
            R"("C:\a b\t.exe" >"C:\logs\t.txt")");
}

TEST(QuoteRule, KeepsWhatStandsBehindTheLastQuote) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\a\t.exe" "x" > y)", kKnowsAll), R"(C:\a\t.exe" "x > y)");
}

TEST(QuoteRule, DropsAQuoteWithoutPartner) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\a b\t.exe amt)", kKnowsAll), R"(C:\a b\t.exe amt)");
  EXPECT_EQ(ApplyQuoteRule("\"", kKnowsAll), "");
}

TEST(QuoteRule, DropsTheQuotesAroundAWholeCommand) {
  EXPECT_EQ(ApplyQuoteRule(R"("C:\Halyard\arcconf.exe savesupportarchive c:\")", Knows("none")),
            R"(C:\Halyard\arcconf.exe savesupportarchive c:\)");
}

TEST(Interpreter, SplitsProgramAndArgumentsAtTheFirstBlank) {
  const Stage stage = OnlyStage(R"(  C:\Halyard\ipmiutil.exe  sensor -s -q  )");
  EXPECT_EQ(stage.program, R"(C:\Halyard\ipmiutil.exe)");
  EXPECT_EQ(stage.arguments, "sensor -s -q");
}

TEST(Interpreter, KeepsAProgramInQuotesInOnePiece) {
  const Stage stage = OnlyStage(R"("C:\Program Files\t.exe" amt)");
  EXPECT_EQ(stage.program, R"("C:\Program Files\t.exe")");
  EXPECT_EQ(stage.arguments, "amt");
}

TEST(Interpreter, KeepsQuotesInArguments) {
  EXPECT_EQ(OnlyStage(R"(t.exe "C:\a b\in.txt" > out)").arguments, R"("C:\a b\in.txt")");
}

TEST(Interpreter, HasNoArgumentsBehindARedirection) {
  const Stage stage = OnlyStage(R"(copy C:\hosts "C:\logs\hosts.txt" > nul more)");
  EXPECT_EQ(stage.arguments, R"(C:\hosts "C:\logs\hosts.txt")");
  ASSERT_EQ(stage.redirections.size(), 1u);
  EXPECT_EQ(stage.redirections[0].target, "nul");
}

TEST(Interpreter, ToleratesAQuoteWithoutPartnerBehindARedirection) {
  const Stage stage = OnlyStage(R"(copy C:\hosts "C:\logs\hosts.txt" > nul ")");
  EXPECT_EQ(stage.arguments, R"(C:\hosts "C:\logs\hosts.txt")");
  ASSERT_EQ(stage.redirections.size(), 1u);
  EXPECT_EQ(stage.redirections[0].target, "nul");
}

TEST(Interpreter, RedirectsToAQuotedTargetWithoutABlankBefore) {
  const Stage stage = OnlyStage(R"(amt_log.exe 10.0.0.5 admin secret>"C:\log s\amtlog.txt")");
  EXPECT_EQ(stage.arguments, "10.0.0.5 admin secret");
  ASSERT_EQ(stage.redirections.size(), 1u);
  EXPECT_EQ(stage.redirections[0].handle, 1);
  EXPECT_EQ(stage.redirections[0].target, R"(C:\log s\amtlog.txt)");
}

TEST(Interpreter, TakesALoneDigitBeforeARedirectionAsItsHandle) {
  const Stage stage = OnlyStage(R"(amt_log.exe 10.0.0.5 admin 5>"C:\logs\amtlog.txt")");
  EXPECT_EQ(stage.arguments, "10.0.0.5 admin");
  ASSERT_EQ(stage.redirections.size(), 1u);
  EXPECT_EQ(stage.redirections[0].handle, 5);
}

TEST(Interpreter, LeavesADigitAtTheEndOfAWordToTheWord) {
  const Stage stage = OnlyStage(R"(amt_log.exe 10.0.0.5 admin secret5>"C:\logs\amtlog.txt")");
  EXPECT_EQ(stage.arguments, "10.0.0.5 admin secret5");
  EXPECT_EQ(stage.redirections[0].handle, 1);
}

TEST(Interpreter, LeavesADigitBeforeABlankToTheArguments) {
  const Stage stage = OnlyStage("t.exe 5 > out.txt");
  EXPECT_EQ(stage.arguments, "5");
  EXPECT_EQ(stage.redirections[0].handle, 1);
}

TEST(Interpreter, TellsStandardErrorAppendingAndReadingApart) {
  const Stage stage = OnlyStage("t.exe -a >one 2>two >>three <four");
  ASSERT_EQ(stage.redirections.size(), 4u);
  EXPECT_EQ(stage.arguments, "-a");
  EXPECT_EQ(stage.redirections[0].kind, Redirection::Kind::kWrite);
  EXPECT_EQ(stage.redirections[1].handle, 2);
  EXPECT_EQ(stage.redirections[2].kind, Redirection::Kind::kAppend);
  EXPECT_EQ(stage.redirections[3].kind, Redirection::Kind::kRead);
  EXPECT_EQ(stage.redirections[3].handle, 0);
}

TEST(Interpreter, FindsTheProgramBehindALeadingRedirection) {
  const Stage stage = OnlyStage("> out.txt t.exe -a");
  EXPECT_EQ(stage.program, "t.exe");
  EXPECT_EQ(stage.arguments, "-a");
}

TEST(Interpreter, SplitsAtPipes) {
  const Pipeline pipeline = ParseCommand("ipmiutil lan | findstr Param|findstr /c:(3) /c:(13)");
  ASSERT_EQ(pipeline.stages.size(), 3u);
  EXPECT_EQ(pipeline.stages[0].arguments, "lan");
  EXPECT_EQ(pipeline.stages[1].arguments, "Param");
  EXPECT_EQ(pipeline.stages[2].arguments, "/c:(3) /c:(13)");
}

TEST(Interpreter, LetsQuotesProtectPipesAndRedirections) {
  EXPECT_EQ(OnlyStage(R"(t.exe "a|b>c" d)").arguments, R"("a|b>c" d)");
}

TEST(Interpreter, LetsAQuoteWithoutPartnerProtectTheRest) {
  EXPECT_EQ(OnlyStage(R"(t.exe "a | b > c)").arguments, R"("a | b > c)");
}

TEST(Interpreter, RefusesAPipeWithoutACommand) {
  EXPECT_TRUE(ParseCommand("t.exe |").isMalformed);
  EXPECT_TRUE(ParseCommand("| t.exe").isMalformed);
  EXPECT_TRUE(ParseCommand("t.exe || t.exe").isMalformed);
}

TEST(Interpreter, RefusesARedirectionWithoutATarget) {
  EXPECT_TRUE(ParseCommand("t.exe >").isMalformed);
  EXPECT_TRUE(ParseCommand("t.exe > > x").isMalformed);
  EXPECT_TRUE(ParseCommand(R"(t.exe > "")").isMalformed);
}

TEST(Interpreter, HasNothingToDoOnAnEmptyLine) {
  EXPECT_THAT(ParseCommandLine("/c ", kKnowsNone).stages, IsEmpty());
  EXPECT_THAT(ParseCommandLine("", kKnowsNone).stages, IsEmpty());
}

TEST(Interpreter, EndsACommandLineAtItsFirstNul) {
  const Pipeline pipeline = ParseCommandLine(std::string_view("/c arp -a\0 > x", 14), kKnowsNone);
  ASSERT_EQ(pipeline.stages.size(), 1u);
  EXPECT_EQ(pipeline.stages[0].arguments, "-a");
  EXPECT_THAT(pipeline.stages[0].redirections, IsEmpty());
}

TEST(Interpreter, SplitsAFolderWithBlanksAndParenthesesAtItsFirstBlank) {
  const Pipeline pipeline = ParseCommandLine(
      R"(/c "C:\Program Files (x86)\H\pq_tools\check_amt_bmc.exe" bmc)", kKnowsAll);
  ASSERT_EQ(pipeline.stages.size(), 1u);
  EXPECT_EQ(pipeline.stages[0].program, R"(C:\Program)");
  EXPECT_EQ(pipeline.stages[0].arguments, R"(Files (x86)\H\pq_tools\check_amt_bmc.exe bmc)");
}

TEST(Interpreter, KeepsSuchAFolderWholeBetweenFourQuotes) {
  const Pipeline pipeline = ParseCommandLine(
      R"(/c ""C:\Program Files (x86)\H\pq_tools\getsmbios.exe" >"C:\logs\smbios_info.txt"")",
      kKnowsAll);
  ASSERT_EQ(pipeline.stages.size(), 1u);
  EXPECT_EQ(pipeline.stages[0].program, R"("C:\Program Files (x86)\H\pq_tools\getsmbios.exe")");
  EXPECT_EQ(pipeline.stages[0].redirections[0].target, R"(C:\logs\smbios_info.txt)");
}

TEST(Interpreter, TreatsCharactersOfNoMeaningHereAsText) {
  EXPECT_EQ(OnlyStage("t.exe a&b ^c %d% (e) @f").arguments, "a&b ^c %d% (e) @f");
}

TEST(ToolName, IsTheFileNameInLowerCaseWithoutExtension) {
  EXPECT_EQ(ToolName(R"("C:\Halyard\pq_tools\SAS2IR_windows_x64.exe")"), "sas2ir_windows_x64");
  EXPECT_EQ(ToolName("ARP.EXE"), "arp");
  EXPECT_EQ(ToolName("route"), "route");
}

TEST(ToolName, KeepsOtherExtensions) { EXPECT_EQ(ToolName(R"(C:\t\run.bat)"), "run.bat"); }

TEST(ToolName, IsEmptyForAFolder) { EXPECT_EQ(ToolName(R"(C:\t\)"), ""); }

TEST(SplitWords, LetsQuotesHoldBlanks) {
  EXPECT_THAT(SplitWords(R"(a  "b c" d"e f"g)"), ElementsAre("a", "b c", "de fg"));
}

TEST(SplitWords, KeepsAnEmptyQuotedWord) {
  EXPECT_THAT(SplitWords(R"(a "")"), ElementsAre("a", ""));
}

TEST(Findstr, SearchesEachWordOfAQuotedArgument) {
  EXPECT_THAT(FindstrTexts(R"("Param Value" Mask)"), ElementsAre("Param", "Value", "Mask"));
}

TEST(Findstr, SearchesAWholeTextBehindC) {
  EXPECT_THAT(FindstrTexts(R"(/c:(3) /c:"two words" /C:x)"), ElementsAre("(3)", "two words", "x"));
}

TEST(Findstr, PassesLinesThatHoldAnyOfTheTexts) {
  EXPECT_EQ(FilterLines("one\r\ntwo\r\nthree\r\n", {"one", "ree"}), "one\r\nthree\r\n");
}

TEST(Findstr, TellsUpperFromLowerCase) {
  EXPECT_EQ(FilterLines("Param\r\nparam\r\n", {"param"}), "param\r\n");
}

TEST(Findstr, EndsEveryLineWithCrLf) {
  EXPECT_EQ(FilterLines("a1\na2\r\na3", {"a"}), "a1\r\na2\r\na3\r\n");
}

TEST(Findstr, KeepsACarriageReturnInsideALine) {
  EXPECT_EQ(FilterLines("a\rb\r\r\n", {"b"}), "a\rb\r\r\n");
}

TEST(Findstr, PassesBytesOfAnyValue) {
  EXPECT_EQ(FilterLines(std::string_view("a\0\xFF\n", 4), {"\xFF"}),
            std::string_view("a\0\xFF\r\n", 5));
}

TEST(Findstr, PassesNothingWithoutInput) { EXPECT_EQ(FilterLines("", {"a"}), ""); }

}  // namespace
}  // namespace host
