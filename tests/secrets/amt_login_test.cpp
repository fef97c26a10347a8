// Keeping the password of the AMT log tool out of what the host writes.

#include "host/secrets/amt_login.h"

#include <gmock/gmock.h>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

constexpr char kHidden[] =
    "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.9 keeper "
    "***>\"C:\\Halyard\\logs\\amtlog.txt\"\"";

std::string LogCommand(const std::string& password) {
  return "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.9 keeper " + password +
         ">\"C:\\Halyard\\logs\\amtlog.txt\"\"";
}

/// Passwords of any kind: odd signs, one character, parts of what else stands on the line, and what
/// stands for a password itself.
const std::vector<std::string> kPasswords = {">\"",    "a>\"b", "x|y", "192.0.2.9",  "keeper",
                                             "\"q\"",  "5",     "***", "\xE4\xF6-1", "amt_log.exe",
                                             "%PATH%", "^&",    "*",   "a>\"b>\"c",  "Q7-secret"};

TEST(HiddenPassword, IsReplacedInTheCommandOfTheAmtLog) {
  for (const std::string& password : kPasswords) {
    EXPECT_EQ(HidePassword(LogCommand(password)), kHidden) << password;
  }
}

TEST(HiddenPassword, OtherCommandsStayAsTheyAre) {
  for (const std::string commandLine :
       {"/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt", "/c arp.exe -a", "",
        "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" a b c", "/c x>\"y\" \\amt_log.exe\" a b c"}) {
    EXPECT_EQ(HidePassword(commandLine), commandLine);
    EXPECT_FALSE(FindAmtLogin(commandLine)) << commandLine;
  }
}

TEST(AmtLoginOfACommand, HasItsPartsWhateverThePasswordHolds) {
  for (const std::string& password : kPasswords) {
    const std::optional<AmtLogin> login = FindAmtLogin(LogCommand(password));
    ASSERT_TRUE(login) << password;
    EXPECT_EQ(login->address, "192.0.2.9");
    EXPECT_EQ(login->userName, "keeper");
    EXPECT_EQ(login->password.View(), password);
    EXPECT_EQ(login->reportPath, "C:\\Halyard\\logs\\amtlog.txt");
  }
}

TEST(AmtLoginOfACommand, OfFewerPartsReadsNothingBehindItsEnd) {
  for (const char* parts : {"", "192.0.2.9", "192.0.2.9 keeper", " "}) {
    const std::string commandLine =
        "/c \"\"C:\\pq_tools\\amt_log.exe\" " + std::string(parts) + ">\"C:\\amtlog.txt\"\"";
    const std::optional<AmtLogin> login = FindAmtLogin(commandLine);
    ASSERT_TRUE(login) << parts;
    EXPECT_EQ(login->password.View(), "") << parts;
    EXPECT_EQ(HidePassword("a text", *login), "a text");
  }
}

/// What is left of `text` when the tool was given `password`.
std::string Hide(const std::string& text, const std::string& password) {
  return HidePassword(text, {"192.0.2.9", "keeper", password, ""});
}

TEST(PasswordInAReport, ThatMixesSignsIsHiddenWhereverItStands) {
  EXPECT_EQ(Hide("Lantern-52 is wrong; xLantern-52y\r\n<Lantern-52>", "Lantern-52"),
            "*** is wrong; x***y\r\n<***>");
}

TEST(PasswordInAReport, DoesNotComeTogetherAroundAGap) {
  EXPECT_EQ(Hide("<aa***b1b1>", "a***b1"), "<***>");
}

/// `text` as UTF-16, in which a NUL follows each of its bytes.
std::string Widen(const std::string& text) {
  std::string wide;
  for (const char c : text) wide.append({c, '\0'});
  return wide;
}

/// The same with the NUL before each of them.
std::string WidenBigEndian(const std::string& text) {
  std::string wide;
  for (const char c : text) wide.append({'\0', c});
  return wide;
}

TEST(PasswordInAReport, IsHiddenInOtherCase) {
  EXPECT_EQ(Hide("LANTERN-52 lantern-52 lAntern-52", "Lantern-52"), "*** *** ***");
}

TEST(PasswordInAReport, IsHiddenPercentEncoded) {
  EXPECT_EQ(Hide("?pw=Lan%74ern%2D52&x %4c%61%6E%74%65%72%6e%2d%35%32", "Lantern-52"),
            "?pw=***&x ***");
  EXPECT_EQ(Hide("a%3eb%22c|x", "a>b\"c|"), "***x");
}

TEST(PasswordInAReport, IsHiddenInUtf16) {
  EXPECT_EQ(Hide(Widen("<Lantern-52>"), "Lantern-52"), Widen("<***>"));
  EXPECT_EQ(Hide(WidenBigEndian("<LANTERN-52>"), "Lantern-52"), WidenBigEndian("<***>"));
  EXPECT_EQ(Hide(Widen("<") + std::string("\xB1\x03", 2) + Widen("-lantern>"), "\xE1-lantern"),
            Widen("<***>"));
  // A letter of Thai.
  EXPECT_EQ(Hide(Widen("<") + std::string("\x01\x0E", 2) + Widen("-lantern>"), "\xA1-lantern"),
            Widen("<***>"));
}

TEST(PasswordInAReport, IsNotHiddenInUtf16AcrossTheEndOfALine) {
  // Read as UTF-16 with the high half first, "\r" and "\n" would be the high halves of letters.
  const std::string log = "b\x01\x02\x03\x04\x05\x06\x05\r\nb\r\n";
  EXPECT_EQ(Hide(log, "b\xD5\xD5\xD5\xD5\xD5"), log);
}

TEST(PasswordInAReport, IsHiddenInBase64WhereverItStandsThere) {
  // The password, and one to three letters with a colon before it.
  EXPECT_EQ(Hide("TGFudGVybi01Mg==", "Lantern-52"), "***==");
  EXPECT_EQ(Hide("<YTpMYW50ZXJuLTUy>", "Lantern-52"), "<YT***>");
  EXPECT_EQ(Hide("Basic YWI6TGFudGVybi01Mjo=", "Lantern-52"), "Basic YWI6***o=");
  EXPECT_EQ(Hide("YWJjOkxhbnRlcm4tNTI=", "Lantern-52"), "YWJjO***=");
  // Of both alphabets.
  EXPECT_EQ(Hide("fn5+Pj8/YWI= fn5-Pj8_YWI=", "~~~>??ab"), "***= ***=");
  // As UTF-16.
  EXPECT_EQ(Hide("TABhAG4AdABlAHIAbgAtADUAMgA=", "Lantern-52"), "***=");
}

TEST(PasswordInAReport, ThatIsAWordIsHiddenInEveryFormBehindALabel) {
  EXPECT_EQ(Hide("Password: SECRET, secret", "secret"), "Password: ***, secret");
  EXPECT_EQ(Hide("password=%73ecret&", "secret"), "password=***&");
  EXPECT_EQ(Hide("Password: c2VjcmV0 c2VjcmV0", "secret"), "Password: *** c2VjcmV0");
  EXPECT_EQ(Hide(Widen("Password: secret, secretary"), "secret"),
            Widen("Password: ***, secretary"));
  EXPECT_EQ(Hide(WidenBigEndian("Password: secretary"), "secret"),
            WidenBigEndian("Password: secretary"));
}

TEST(PasswordInAReport, ThatIsADigitLeavesNumbersAlone) {
  const std::string log = "1 2024-01-11 11:01:10 Password: 12 of 1\r\n192.0.2.9 keeper 11\r\n";
  EXPECT_EQ(Hide(log, "1"), log);
}

TEST(PasswordInAReport, ThatIsAWordLeavesTheWordAlone) {
  const std::string log = "admin session opened, admin role, administrator password expired\r\n";
  EXPECT_EQ(Hide(log, "admin"), log);
  EXPECT_EQ(Hide(log, "password"), log);
}

TEST(PasswordInAReport, ThatIsTheUserNameLeavesTheUserAlone) {
  const std::string log = "session of keeper-1 at 192.0.2.9\r\n";
  EXPECT_EQ(HidePassword(log, {"192.0.2.9", "keeper-1", "keeper-1", ""}), log);
  EXPECT_EQ(HidePassword(log, {"192.0.2.9", "keeper-1", "eper-1", ""}), log);
  EXPECT_EQ(HidePassword(log, {"192.0.2.9", "keeper", "192.0.2.9", ""}), log);
}

TEST(PasswordInAReport, OfAnyKindIsHiddenInTheRepeatedLogin) {
  for (const std::string& password : kPasswords) {
    EXPECT_EQ(Hide("login 192.0.2.9 keeper " + password + "\r\n", password),
              "login 192.0.2.9 keeper ***\r\n")
        << password;
  }
}

TEST(PasswordInAReport, OfAnyKindIsHiddenBehindALabel) {
  for (const std::string label : {"Password: ", "PASSWORD=", "pwd '", "Passwd \"", " -p "}) {
    EXPECT_EQ(Hide(label + "secret!", "secret"), label + "***!");
    EXPECT_EQ(Hide(label + "1\r\n", "1"), label + "***\r\n");
  }
}

TEST(PasswordInAReport, IsNotHiddenInALongerWordBehindALabel) {
  EXPECT_EQ(Hide("password: secretary", "secret"), "password: secretary");
  EXPECT_EQ(Hide("mypwd secret", "secret"), "mypwd secret");
  EXPECT_EQ(Hide("passwordsecret", "secret"), "passwordsecret");
}

class ReportWithALogin : public testing::Test {
 protected:
  std::string HideIn(const std::string& report) {
    folder.Write("amtlog.txt", report);
    HidePasswordInReport({"192.0.2.9", "keeper", "Lantern-52", folder / "amtlog.txt"});
    return folder.Read("amtlog.txt");
  }
  test::TemporaryFolder folder;
};

TEST_F(ReportWithALogin, LosesThePassword) {
  EXPECT_EQ(HideIn("open Lantern-52\r\nLantern-52"), "open ***\r\n***");
}

TEST_F(ReportWithALogin, KeepsEveryOtherByte) {
  std::string report("\0\x1A\r\n\n\r\xFF", 7);
  EXPECT_EQ(HideIn(report + "Lantern-52" + report), report + "***" + report);
}

TEST_F(ReportWithALogin, IsNotMadeWhenTheToolWroteNone) {
  HidePasswordInReport({"192.0.2.9", "keeper", "Lantern-52", folder / "amtlog.txt"});
  EXPECT_THAT(folder.Files(), testing::IsEmpty());
}

}  // namespace
}  // namespace host
