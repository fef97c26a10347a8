// The user, or the system, wants the program to end: Ctrl-C and Ctrl-Break, a closed console, and
// the signals INT, TERM and HUP.
#pragma once

#include <string_view>

namespace host {

inline constexpr std::string_view kLastWords = "pqhost: interrupted\n";

/// From now on each of them removes the files that are not complete and ends the program with
/// `exitCode`, saying so on standard error, but for the first Ctrl-C while an InterruptionWatch
/// lives. A signal that is ignored stays so: nohup.
void EndCleanlyWhenAsked(int exitCode);

/// Whether Ctrl-C was pressed since the last watch began. May be asked on any thread.
bool IsInterruptionRequested();

/// While it lives, the first Ctrl-C only asks for an early end: of the collection, whose results
/// are still written. Not more than one at a time.
class InterruptionWatch {
 public:
  InterruptionWatch();
  InterruptionWatch(const InterruptionWatch&) = delete;
  InterruptionWatch& operator=(const InterruptionWatch&) = delete;
  ~InterruptionWatch();
};

}  // namespace host
