// What arcconf, rstcli, ipmiutil and amt_log print on one machine, parted by form feeds: whatever
// is in it, there are no more parts than lines, and each is found again where it says it was read.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "fuzz/machine_answers.h"
#include "tests/support/machine_part_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const auto take = [&] { return std::string(fuzz::TakeUpTo(rest, '\f')); };
  host::Recording machine = test::MakeBmcMachine();
  machine.commands.push_back({"arcconf.exe", "savesupportarchive c:\\", "", ""});
  machine.files["c:\\Support\\Firmware\\Controller_1_Config.txt"] = take();
  machine.files["c:\\Support\\Firmware\\Controller_1_Event_Log.txt"] = take();
  fuzz::AddOtherAnswers(machine, take);

  const std::string unsound = test::FindUnsoundPart(machine);
  if (unsound.empty()) return 0;
  std::fputs(unsound.c_str(), stderr);
  std::abort();
}
