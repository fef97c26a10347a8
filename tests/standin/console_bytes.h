// What the stand-in programs share: their raw command line, and writing bytes as they are.
#pragma once

#include <string>
#include <string_view>

namespace test {

/// Writes all of `bytes` to a system handle; stops quietly when the reader has gone.
void WriteBytes(void* handle, std::string_view bytes);

/// This process's command line, cut behind its first word, which may be quoted.
struct OwnCommandLine {
  std::string program;    ///< the first word, with its quotes
  std::string arguments;  ///< all behind it, without blanks at its ends
};
OwnCommandLine ReadOwnCommandLine();

/// What the interpreter writes to standard error when it finds no program of that name.
std::string NotRecognized(std::string_view program);

}  // namespace test
