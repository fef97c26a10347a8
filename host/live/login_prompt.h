// Answers the AMT module, which asks on the console for an address, a user name and a password.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/secrets/secret.h"

namespace host {

class LoginPrompt {
 public:
  /// The next character of what someone typed or prepared; EOF at its end.
  using Input = std::function<int()>;

  /// `input` is asked when the module asks; null: nobody answers, and nobody is waited for.
  /// `isPerson`: who answers can be asked again. `warn` is told in a line what a login is going to
  /// do. `whyNoLogin` says why there is none when the input ends.
  LoginPrompt(Input input, bool isPerson, std::function<void(const std::string&)> warn,
              std::string whyNoLogin);

  /// The next character of the answer; EOF at its end.
  int ReadCharacter();

  /// Why the module got no login although nobody declined; empty: it did not come to that.
  const std::string& WhyNoLogin() const { return metEnd ? whyNoLogin : kNoReason; }

 private:
  static inline const std::string kNoReason;

  bool ReadLine();
  void AskForConfirmation();

  Input input;
  bool isPerson;
  std::function<void(const std::string&)> warn;
  std::string whyNoLogin;
  Secret line;             ///< being handed out
  std::size_t handed = 0;  ///< characters of it
  bool metEnd = false;
};

/// The characters of a login in `line`, as the prompt takes it, that the command interpreter takes
/// for its own: the tool may get another login, and what stands behind one of them may be run.
/// Each once, with blanks between; empty: there is none.
std::string FindInterpreterCharacters(std::string_view line);

}  // namespace host
