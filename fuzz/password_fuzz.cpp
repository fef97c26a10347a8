// The AMT password in what the host writes. The first three lines of the input are address, user
// and password; the rest is the tool's report.
//
// The command line loses the password whatever it holds. The report loses one that AMT would accept
// wherever it is and in each of its forms, and any other where the report says that it is the
// password; what has it in no form stays as it is.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/checks.h"
#include "host/secrets/amt_login.h"
#include "host/text/ascii.h"

namespace {

using fuzz::Require;

std::string MakeCommandLine(const host::AmtLogin& login, std::string_view password) {
  return "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" " + login.address + " " + login.userName +
         " " + std::string(password) + ">\"" + login.reportPath + "\"\"";
}

void CheckCommandLine(const host::AmtLogin& login) {
  const std::string commandLine = MakeCommandLine(login, login.password.View());
  Require(host::HidePassword(commandLine) == MakeCommandLine(login, host::kHiddenPassword));
  const auto found = host::FindAmtLogin(commandLine);
  Require(found && found->address == login.address && found->userName == login.userName &&
          found->password == login.password && found->reportPath == login.reportPath);
}

/// Long, with letters and other signs, and no part of what may be shown.
bool IsStrong(const host::AmtLogin& login) {
  const std::string_view password = login.password.View();
  const auto letters = std::count_if(password.begin(), password.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  });
  return password.size() >= 6 && letters > 0 && letters < static_cast<long>(password.size()) &&
         login.userName.find(password) == std::string::npos &&
         login.address.find(password) == std::string::npos;
}

std::string EncodeBase64(std::string_view bytes) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  unsigned bits = 0;
  int count = 0;
  const auto add = [&] {
    while (count >= 6) text += kAlphabet[bits >> (count -= 6) & 63];
  };
  for (const char c : bytes) {
    bits = (bits << 8 | static_cast<unsigned char>(c)) & 0xFFFF;
    count += 8;
    add();
  }
  if (count > 0) {
    bits <<= 6 - count;
    count = 6;
    add();
  }
  return text;
}

std::string EncodePercent(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    text.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
  }
  return text;
}

std::string Widen(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text.append({c, '\0'});
  return text;
}

/// A strong password is hidden in each form, with nothing beside it.
void CheckForms(const host::AmtLogin& login, const std::string& report) {
  const std::string_view password = login.password.View();
  const std::string begin = host::HidePassword(report + "\r\n", login);
  std::vector<std::string> forms = {std::string(password), host::LowerCase(password),
                                    EncodeBase64(password), EncodeBase64(Widen(password))};
  // A "%" is found in its own code, "%25", too, with what follows in the middle of that.
  if (!password.ends_with('%') && password.find("%2") == std::string_view::npos) {
    forms.push_back(EncodePercent(password));
  }
  for (const std::string& form : forms) {
    const std::string text = std::string(report).append("\r\n").append(form).append("\r\n");
    Require(host::HidePassword(text, login) == begin + "***\r\n");
  }
  for (const std::string before : {":", "::", ":::"}) {
    const std::string hidden =
        host::HidePassword(EncodeBase64(before + std::string(password) + "::::"), login);
    Require(hidden.find("***") <= before.size() * 8 / 6);
    // What is left is of the colons.
    Require(hidden.size() <= (before.size() + 4) * 8 / 6 + 5);
  }
}

void CheckReport(const host::AmtLogin& login, const std::string& report) {
  const std::string hidden = host::HidePassword(report, login);
  if (IsStrong(login)) {
    Require(hidden.find(login.password.View()) == std::string::npos);
    CheckForms(login, report);
  }
  Require(hidden == report || hidden.find("***") != std::string::npos ||
          hidden.find(std::string("*\0*\0*", 5)) != std::string::npos);

  for (const std::string& before :
       {std::string("\r\nPassword: "), "\r\n" + login.address + " " + login.userName + " "}) {
    const std::string told =
        host::HidePassword(report + before + std::string(login.password.View()) + "\r\n", login);
    Require(told.ends_with(std::string(host::kHiddenPassword) + "\r\n"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = fuzz::InputText(data, size);
  host::AmtLogin login;
  login.reportPath = "C:\\Halyard\\logs\\amtlog.txt";
  std::string password;
  for (std::string* part : {&login.address, &login.userName, &password}) {
    *part = fuzz::TakeUpTo(rest, '\n');
    // As the prompt takes them.
    if (part->empty() || part->size() > 31) return 0;
    if (part->find_first_of(std::string_view(" \r\0", 3)) != std::string::npos) return 0;
  }
  login.password = std::move(password);
  CheckCommandLine(login);
  CheckReport(login, std::string(rest));
  return 0;
}
