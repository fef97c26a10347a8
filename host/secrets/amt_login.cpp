#include "host/secrets/amt_login.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "host/recorded/interpreter.h"
#include "host/secrets/secret_forms.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::string_view kWideHiddenPassword("*\0*\0*", 5);

constexpr std::string_view kTool = "\\amt_log.exe\" ";
constexpr std::string_view kRedirection = ">\"";

/// AMT demands longer ones.
constexpr std::size_t kShortestDistinct = 6;

/// Bytes before a password in which it is announced: address and user in UTF-16, and signs.
constexpr std::size_t kLongestAnnouncement = 256;

/// What a tool writes before a password that it shows; in lower case.
constexpr std::string_view kLoginLabels[] = {"password", "passwd", "pwd", "-p"};

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
  const std::string_view password = login.password.View();
  const auto letters = std::count_if(password.begin(), password.end(), &IsLetter);
  const bool isMixed = letters > 0 && letters < static_cast<std::ptrdiff_t>(password.size());
  const bool isPartOfTheRest = login.userName.find(password) != std::string::npos ||
                               login.address.find(password) != std::string::npos;
  return password.size() >= kShortestDistinct && isMixed && !isPartOfTheRest;
}

/// What takes the place of the password: as wide as that.
std::string_view HiddenAs(const SecretForms::Found& found) {
  return found.isWide ? kWideHiddenPassword : kHiddenPassword;
}

std::string HideEverywhere(std::string_view text, const SecretForms& forms) {
  std::string hidden;
  hidden.reserve(text.size());
  for (const char c : text) {
    hidden += c;
    // More than once where a password that has "***" in it comes together around a gap.
    for (auto found = forms.FindAtEnd(hidden); !found.empty(); found = forms.FindAtEnd(hidden)) {
      hidden.resize(hidden.size() - found.front().size);
      hidden += HiddenAs(found.front());
    }
  }
  return hidden;
}

/// Whether the word before `text` goes on in it. UTF-16 has a NUL before or behind each character.
bool ContinuesWord(std::string_view text) {
  if (text.starts_with('\0')) text.remove_prefix(1);
  return !text.empty() && IsWordCharacter(text.front());
}

/// Whether a password is announced by `text`, which ends where it begins.
bool Announces(std::string_view text, const AmtLogin& login) {
  std::string before(text.substr(text.size() - std::min(text.size(), kLongestAnnouncement)));
  std::erase(before, '\0');  // of UTF-16
  if (before.ends_with(login.address + ' ' + login.userName + ' ')) return true;
  const std::size_t end = before.find_last_not_of(" \t:='\"");
  if (end == std::string_view::npos || end + 1 == before.size()) return false;
  before.resize(end + 1);
  return std::any_of(std::begin(kLoginLabels), std::end(kLoginLabels), [&](std::string_view label) {
    if (before.size() < label.size()) return false;
    const std::size_t at = before.size() - label.size();
    return LowerCase(std::string_view(before).substr(at)) == label &&
           (at == 0 || !IsWordCharacter(before[at - 1]));
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
  const std::optional<LoginPlace> place = FindPlace(commandLine);
  if (!place) return std::string(commandLine);
  // Put together from its parts, so that no memory of the result ever holds the password.
  std::string text(commandLine.substr(0, place->password));
  text.append(kHiddenPassword).append(commandLine.substr(place->end));
  return text;
}

std::string HidePassword(std::string_view text, const AmtLogin& login) {
  if (login.password.View().empty()) return std::string(text);
  const SecretForms forms(login.password.View());
  if (IsDistinct(login)) return HideEverywhere(text, forms);
  std::string hidden;
  std::size_t kept = 0;  // what stands before is in `hidden`
  for (std::size_t end = 1; end <= text.size(); ++end) {
    for (const SecretForms::Found& found : forms.FindAtEnd(text.substr(kept, end - kept))) {
      const std::size_t begin = end - found.size;
      if (ContinuesWord(text.substr(end)) || !Announces(text.substr(0, begin), login)) continue;
      hidden.append(text, kept, begin - kept).append(HiddenAs(found));
      kept = end;
      break;
    }
  }
  return hidden.append(text, kept);
}

void HidePasswordInReport(const AmtLogin& login) {
  std::ifstream file(login.reportPath, std::ios::binary);
  const Secret written = std::string(std::istreambuf_iterator<char>(file), {});
  file.close();
  const std::string hidden = HidePassword(written.View(), login);
  if (hidden == written.View()) return;
  std::ofstream(login.reportPath, std::ios::binary)
      .write(hidden.data(), static_cast<std::streamsize>(hidden.size()));
}

}  // namespace host
