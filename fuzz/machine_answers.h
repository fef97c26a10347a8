// A machine whose tools answer with pieces of a fuzzed input.
#pragma once

#include "host/recorded/recording.h"
#include "tests/support/bmc_machine.h"

namespace fuzz {

/// Gives a machine with a BMC answers of Intel's tool, the BMC's and AMT's, each from take().
template <typename Take>
void AddOtherAnswers(host::Recording& machine, const Take& take) {
  machine.commands.push_back({"rstcli64_5.exe", "-I", take(), ""});
  for (const char* arguments : {"sensor -s -q", "sensor", "sel", "korvaxoem fru", "korvaxoem psu",
                                "korvaxoem led", "korvaxoem selftest"}) {
    test::AnswerOf(machine, arguments).standardOutput = take();
  }
  machine.console = "192.0.2.1 admin secret\n";
  machine.commands.push_back({"check_amt_bmc.exe", "amt", "", "", 1});
  machine.commands.push_back({"amt_log.exe", "192.0.2.1 admin secret", take(), ""});
}

}  // namespace fuzz
