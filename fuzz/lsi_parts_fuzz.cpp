// storcli's four reports on a controller, parted by form feeds: whatever is in them, there are no
// more parts than lines, and each is found again where it says it was read.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/support/part_checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  test::Reports reports;
  for (const char* key : {"lsishowall", "pdlist", "lsieventlog", "lsifwtermlog"}) {
    const std::string_view text = rest.substr(0, rest.find('\f'));
    reports[key] = text;
    rest.remove_prefix(std::min(rest.size(), text.size() + 1));
  }
  const std::string unsound = test::FindUnsoundPart(reports, test::ReadLsiReports(reports));
  if (unsound.empty()) return 0;
  std::fputs(unsound.c_str(), stderr);
  std::abort();
}
