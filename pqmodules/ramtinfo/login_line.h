// The operator's answer to the AMT prompt: "192.0.2.10 admin secret", in one line.
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

/// The content of a line. A part too long for its room counts before parts that are missing after
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

/// Splits `line` at blanks and line ends; parts after the third are ignored. Fills `login`
/// only when the line is complete.
LoginLine ParseLoginLine(std::string_view line, AmtLogin& login);

}  // namespace pq
