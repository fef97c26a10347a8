// What arcconf, rstcli, ipmiutil and amt_log print on one machine, parted by form feeds: whatever
// is in it, there are no more parts than lines, and each is found again where it says it was read.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/support/bmc_machine.h"
#include "tests/support/machine_part_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const auto take = [&] {
    const std::string text(rest.substr(0, rest.find('\f')));
    rest.remove_prefix(std::min(rest.size(), text.size() + 1));
    return text;
  };
  host::Recording machine = test::MakeBmcMachine();
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", "", ""});
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = take();
  machine.files["c:\\Support\\Firmware\\Controller_1_Event_Log.txt"] = take();
  machine.commands.push_back({"rstcli64_5.exe", "-I", take(), ""});
  for (const char* arguments : {"sensor -s -q", "sensor", "sel", "korvaxoem fru", "korvaxoem psu",
                                "korvaxoem led", "korvaxoem selftest"}) {
    test::AnswerOf(machine, arguments).standardOutput = take();
  }
  machine.console = "192.0.2.1 admin secret\n";
  machine.commands.push_back({"check_amt_bmc.exe", "amt", "", "", 1});
  machine.commands.push_back({"amt_log.exe", "192.0.2.1 admin secret", take(), ""});

  const std::string unsound = test::FindUnsoundPart(machine);
  if (unsound.empty()) return 0;
  std::fputs(unsound.c_str(), stderr);
  std::abort();
}
