#include "host/pqhost/elevation.h"

#include <cstdio>
#include <string>

#include "host/check/machine_check.h"
#include "host/text/ascii.h"
#include "host/text/trim.h"

namespace host {
namespace {

/// Whether the line that is typed next says yes, or nothing against it.
bool ReadYes(const std::function<int()>& read) {
  std::string line;
  int c = read();
  for (; c != '\n' && c != EOF; c = read()) line += static_cast<char>(c);
  const std::string word = LowerCase(Trim(line));
  return (c != EOF && word.empty()) || word == "y" || word == "yes";
}

}  // namespace

bool OfferElevation(const Console& console, const std::function<int()>& read) {
  Complain(console, kNotElevated);
  const bool canAsk = read && console.inIsTerminal && console.errorIsTerminal;
  if (!canAsk || !console.restartElevated) return false;
  console.error << "Start again as administrator? [Y/n] " << std::flush;
  if (!ReadYes(read)) return false;
  if (!console.restartElevated()) {
    Complain(console, "it was not started as administrator; going on without");
    return false;
  }
  console.error << "The collection goes on in a new window.\n";
  return true;
}

}  // namespace host
