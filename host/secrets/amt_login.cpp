#include "host/secrets/amt_login.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "host/recorded/interpreter.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::string_view kTool = "\\amt_log.exe\" ";
constexpr std::string_view kRedirection = ">\"";

/// AMT demands longer ones.
constexpr std::size_t kShortestDistinct = 6;

/// What a tool writes before a password that it shows; in lower case.
constexpr std::string_view kLabels[] = {"password", "passwd", "pwd", "-p"};

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsWordCharacter(char c) { return IsLetter(c) || (c >= '0' && c <= '9') || c == '_'; }

/// Where the parts of a login stand on a command line.
struct LoginPlace {
  std::size_t address;
  std::size_t userName;
  std::size_t password;
  std::size_t end;
};

std::optional<LoginPlace> FindPlace(std::string_view commandLine) {
  const std::size_t tool = commandLine.find(kTool);
  // A path holds no such sign; a password may.
  const std::size_t end = commandLine.rfind(kRedirection);
  if (tool == std::string_view::npos || end == std::string_view::npos || end < tool) {
    return std::nullopt;
  }
  const auto behindNextBlank = [&](std::size_t at) {
    return std::min(commandLine.find(' ', at), end - 1) + 1;
  };
  LoginPlace place{};
  place.address = tool + kTool.size();
  place.userName = behindNextBlank(place.address);
  place.password = behindNextBlank(place.userName);
  place.end = end;
  return place;
}

/// Whether the password stands in a text only where the tool repeats it.
bool IsDistinct(const AmtLogin& login) {
  const std::string& password = login.password;
  const auto letters = std::count_if(password.begin(), password.end(), &IsLetter);
  const bool isMixed = letters > 0 && letters < static_cast<std::ptrdiff_t>(password.size());
  const bool isPartOfTheRest = login.userName.find(password) != std::string::npos ||
                               login.address.find(password) != std::string::npos;
  return password.size() >= kShortestDistinct && isMixed && !isPartOfTheRest;
}

std::string HideEverywhere(std::string_view text, std::string_view password) {
  std::string hidden;
  hidden.reserve(text.size());
  for (const char c : text) {
    hidden += c;
    // More than once where a password that has "***" in it comes together around a gap.
    while (hidden.ends_with(password)) {
      hidden.replace(hidden.size() - password.size(), password.size(), kHiddenPassword);
    }
  }
  return hidden;
}

/// Whether a password is announced by `before`, the text up to it.
bool Announces(std::string_view before, const AmtLogin& login) {
  if (before.ends_with(login.address + ' ' + login.userName + ' ')) return true;
  const std::size_t end = before.find_last_not_of(" \t:='\"");
  if (end == std::string_view::npos || end + 1 == before.size()) return false;
  before = before.substr(0, end + 1);
  return std::any_of(std::begin(kLabels), std::end(kLabels), [&](std::string_view label) {
    if (before.size() < label.size()) return false;
    const std::size_t at = before.size() - label.size();
    return LowerCase(before.substr(at)) == label && (at == 0 || !IsWordCharacter(before[at - 1]));
  });
}

}  // namespace

std::optional<AmtLogin> FindAmtLogin(std::string_view commandLine) {
  const std::optional<LoginPlace> place = FindPlace(commandLine);
  if (!place) return std::nullopt;
  const auto part = [&](std::size_t from, std::size_t behind) {
    return std::string(commandLine.substr(from, behind > from ? behind - from : 0));
  };
  AmtLogin login;
  login.address = part(place->address, place->userName - 1);
  login.userName = part(place->userName, place->password - 1);
  login.password = part(place->password, place->end);
  const std::size_t path = place->end + kRedirection.size();
  login.reportPath = part(path, std::min(commandLine.find('"', path), commandLine.size()));
  return login;
}

std::string HidePassword(std::string_view commandLine) {
  std::string text(commandLine);
  const std::optional<LoginPlace> place = FindPlace(commandLine);
  if (place) text.replace(place->password, place->end - place->password, kHiddenPassword);
  return text;
}

std::string HidePassword(std::string text, const AmtLogin& login) {
  const std::string& password = login.password;
  if (password.empty()) return text;
  if (IsDistinct(login)) return HideEverywhere(text, password);
  std::string hidden;
  std::size_t kept = 0;  // what stands before is in `hidden`
  for (std::size_t at = text.find(password); at != std::string::npos;) {
    const std::size_t behind = at + password.size();
    const bool isWhole = behind == text.size() || !IsWordCharacter(text[behind]);
    if (!isWhole || !Announces(std::string_view(text).substr(0, at), login)) {
      at = text.find(password, at + 1);
      continue;
    }
    hidden.append(text, kept, at - kept).append(kHiddenPassword);
    kept = behind;
    at = text.find(password, behind);
  }
  return kept == 0 ? text : hidden.append(text, kept);
}

void HidePasswordInReport(const AmtLogin& login) {
  std::ifstream file(login.reportPath, std::ios::binary);
  const std::string written(std::istreambuf_iterator<char>(file), {});
  file.close();
  const std::string hidden = HidePassword(written, login);
  if (hidden == written) return;
  std::ofstream(login.reportPath, std::ios::binary)
      .write(hidden.data(), static_cast<std::streamsize>(hidden.size()));
}

}  // namespace host
