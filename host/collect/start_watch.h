// Which tool it was that could not start. Modules do not even try a command line that is too long,
// so nothing but their log tells of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

class StartWatch {
 public:
  void Module(const std::string& name);
  /// A start is tried.
  void Start();
  /// The tool that was started has ended.
  void End() { justTried = false; }
  /// The module logged `text`, without the log's prefix. The command line when that says that one
  /// was too long to be tried; only its program where the module does not log the line itself.
  std::optional<std::string> Log(std::string_view text);

 private:
  std::string module;
  std::string loggedLine;  ///< the last command line in the log, as long as no start was tried
  bool justTried = false;  ///< nothing was seen since a start was tried
};

}  // namespace host
