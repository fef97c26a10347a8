#include "host/pqhost/start.h"

#include <utility>

#include "host/text/path_text.h"

namespace host {

Start PlanStart(std::vector<std::string> given, bool hasOwnConsole,
                const std::function<std::filesystem::path()>& findDesktop) {
  if (!hasOwnConsole) return {std::move(given)};
  if (!given.empty()) {
    const bool isOwnWindow = given.back() == kOwnWindow;
    if (isOwnWindow) given.pop_back();
    return {std::move(given), isOwnWindow};
  }
  Start start{{"collect", "--report"}, true};
  if (const std::filesystem::path desktop = findDesktop(); !desktop.empty()) {
    start.arguments.insert(start.arguments.end(), {"--output", PathText(desktop)});
  }
  return start;
}

}  // namespace host
