// The AMT password in what the host writes. The first three lines of the input are address, user
// and password; the rest is the tool's report.
//
// The command line loses the password whatever it holds. The report loses one that AMT would accept
// wherever it is, and any other where the report says that it is the password; what has no password
// stays as it is.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "host/secrets/amt_login.h"

namespace {

using fuzz::Require;

std::string MakeCommandLine(const host::AmtLogin& login, std::string_view password) {
  return "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" " + login.address + " " + login.userName +
         " " + std::string(password) + ">\"" + login.reportPath + "\"\"";
}

void CheckCommandLine(const host::AmtLogin& login) {
  const std::string commandLine = MakeCommandLine(login, login.password);
  Require(host::HidePassword(commandLine) == MakeCommandLine(login, host::kHiddenPassword));
  const auto found = host::FindAmtLogin(commandLine);
  Require(found && found->address == login.address && found->userName == login.userName &&
          found->password == login.password && found->reportPath == login.reportPath);
}

/// Long, with letters and other signs, and no part of what may be shown.
bool IsStrong(const host::AmtLogin& login) {
  const std::string& password = login.password;
  const auto letters = std::count_if(password.begin(), password.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  });
  return password.size() >= 6 && letters > 0 && letters < static_cast<long>(password.size()) &&
         login.userName.find(password) == std::string::npos &&
         login.address.find(password) == std::string::npos;
}

void CheckReport(const host::AmtLogin& login, const std::string& report) {
  const std::string hidden = host::HidePassword(report, login);
  if (IsStrong(login)) Require(hidden.find(login.password) == std::string::npos);
  if (report.find(login.password) == std::string::npos) Require(hidden == report);

  for (const std::string& before :
       {std::string("\r\nPassword: "), "\r\n" + login.address + " " + login.userName + " "}) {
    const std::string told = host::HidePassword(report + before + login.password + "\r\n", login);
    Require(told.ends_with(std::string(host::kHiddenPassword) + "\r\n"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = fuzz::InputText(data, size);
  host::AmtLogin login;
  login.reportPath = "C:\\Halyard\\logs\\amtlog.txt";
  for (std::string* part : {&login.address, &login.userName, &login.password}) {
    *part = fuzz::TakeUpTo(rest, '\n');
    // As the prompt takes them.
    if (part->empty() || part->size() > 31) return 0;
    if (part->find_first_of(std::string_view(" \r\0", 3)) != std::string::npos) return 0;
  }
  CheckCommandLine(login);
  CheckReport(login, std::string(rest));
  return 0;
}
