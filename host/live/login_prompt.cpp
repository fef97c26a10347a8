#include "host/live/login_prompt.h"

#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/tokens.h"

namespace host {
namespace {

constexpr std::string_view kSeparators = " \r\n";
/// Address, user name and password; the module reads no further.
constexpr std::size_t kLoginWords = 3;
constexpr std::string_view kInterpreterCharacters = "&|<>^%\"";

}  // namespace

std::string FindInterpreterCharacters(std::string_view line) {
  const std::vector<std::string_view> words = pq::SplitTokens(line, kSeparators);
  std::string found;
  if (words.size() < kLoginWords) return found;
  for (const char c : kInterpreterCharacters) {
    for (std::size_t word = 0; word < kLoginWords; ++word) {
      if (words[word].find(c) == std::string_view::npos) continue;
      if (!found.empty()) found += ' ';
      found += c;
      break;
    }
  }
  return found;
}

LoginPrompt::LoginPrompt(Input input, bool isPerson, std::function<void(const std::string&)> warn,
                         std::string whyNoLogin)
    : input(std::move(input)),
      isPerson(isPerson),
      warn(std::move(warn)),
      whyNoLogin(std::move(whyNoLogin)) {}

/// Whether there was anything to read.
bool LoginPrompt::ReadLine() {
  line.Clear();
  handed = 0;
  if (!input) return false;
  for (int character = input(); character != EOF; character = input()) {
    const char c = static_cast<char>(character);
    line.Append({&c, 1});
    if (c == '\n') break;
  }
  if (line.View().empty()) return false;
  // The end of the input ends its last line, too.
  if (!line.View().ends_with('\n')) line.Append("\n");
  return true;
}

/// Warns of the line, and lets a person think again until the same is typed twice.
void LoginPrompt::AskForConfirmation() {
  Secret last;
  while (true) {
    const std::string found = FindInterpreterCharacters(line.View());
    if (found.empty() || line == last) return;
    warn("the AMT login holds " + found +
         " which the command interpreter takes for its own: amt_log.exe may get another login, and "
         "a part of it may be shown or run as a command" +
         (isPerson ? "; type it again to use it all the same, or type another" : ""));
    if (!isPerson) return;
    last = line;
    if (!ReadLine()) return;
  }
}

int LoginPrompt::ReadCharacter() {
  if (handed == line.View().size()) {
    if (!ReadLine()) {
      metEnd = metEnd || !isPerson;
      return EOF;
    }
    AskForConfirmation();
    if (line.View().empty()) return EOF;
  }
  const auto character = static_cast<unsigned char>(line.View()[handed++]);
  if (handed == line.View().size()) {
    line.Clear();
    handed = 0;
  }
  return character;
}

}  // namespace host
