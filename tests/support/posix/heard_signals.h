// Signals as a program gets them from a terminal.
#pragma once

#include <signal.h>

#include <array>
#include <cstddef>

namespace test {

/// While it lives, INT, TERM and HUP end this process and those that it starts, unless handled. A
/// program in the background of a shell would ignore INT.
class HeardSignals {
 public:
  static constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

  HeardSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      struct sigaction usual {};
      usual.sa_handler = SIG_DFL;
      sigaction(kSignals[i], &usual, &before[i]);
    }
  }
  HeardSignals(const HeardSignals&) = delete;
  HeardSignals& operator=(const HeardSignals&) = delete;
  ~HeardSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &before[i], nullptr);
  }

 private:
  std::array<struct sigaction, kSignals.size()> before{};
};

}  // namespace test
