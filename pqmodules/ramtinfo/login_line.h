// What the operator types at the AMT prompt: "192.0.2.10 admin secret", in one line.
#pragma once

#include <cstddef>
#include <string_view>

namespace pq {

/// Room of the line, and of each of its three parts, terminator included.
inline constexpr std::size_t kLoginLineRoom = 128;
inline constexpr std::size_t kLoginPartRoom = 32;

/// Where and as whom to ask AMT. The texts point into the line that they were read from.
struct AmtLogin {
  std::string_view address;
  std::string_view userName;
  std::string_view password;
};

/// What a line holds. A part that does not fit its room is told before parts that are missing after
/// it.
enum class LoginLine {
  kComplete,
  kEmpty,  ///< nothing at all was typed
  kBlank,  ///< something was typed, but no part is in it
  kAddressTooLong,
  kUserNameTooLong,
  kPasswordTooLong,
  kOnlyAddress,
  kNoPassword,
};

/// Splits `line` at blanks and line ends; what follows the third part is ignored. Fills `login`
/// only when the line is complete.
LoginLine ParseLoginLine(std::string_view line, AmtLogin& login);

}  // namespace pq
