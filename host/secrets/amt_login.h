// The login that the operator types for the AMT log tool, and keeping its password out of all that
// the host writes. The tool gets it on its command line:
//
//   /c ""C:\Halyard\pq_tools\amt_log.exe" 192.0.2.10 admin PASSWORD>"C:\Halyard\logs\amtlog.txt""
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/secrets/secret.h"

namespace host {

/// Stands for a password wherever one was. The AMT module takes it for a password, too, so that a
/// recording that holds it can be replayed.
inline constexpr std::string_view kHiddenPassword = "***";

struct AmtLogin {
  std::string address;
  std::string userName;
  Secret password;
  std::string reportPath;  ///< of the file that the tool writes to
};

/// The login on a command line of the AMT log tool; nothing on any other.
std::optional<AmtLogin> FindAmtLogin(std::string_view commandLine);

/// The command line without the password; any other command line as it is.
std::string HidePassword(std::string_view commandLine);

/// What a tool wrote, without the password of `login` where the tool repeats it, as it is, in other
/// case, percent-encoded, in UTF-16 or in Base64.
///
/// A password that mixes letters with other signs, as AMT demands, stands in no text by chance and
/// goes wherever it is. A mere word, a number or the user's name would take other texts with it,
/// and the gaps would betray it; it goes where the text says that it is the password: behind
/// address and user, and behind a label such as "Password:".
std::string HidePassword(std::string_view text, const AmtLogin& login);

/// The same in the file that the tool wrote; a file that holds no password is left untouched.
void HidePasswordInReport(const AmtLogin& login);

}  // namespace host
