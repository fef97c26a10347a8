// Redacts a report of so many lines, each with values that no other has.
#include <fmt/format.h>

#include <cstdlib>
#include <string>

#include "host/redact/redaction.h"

int main(int argc, char** argv) {
  const int lines = argc > 1 ? std::atoi(argv[1]) : 0;
  std::string report;
  for (int i = 0; i < lines; ++i) {
    report += fmt::format(
        "  TCP    10.24.{}.{}:445         client-{:07}:50112     ESTABLISHED\n"
        "SN = Z4K{:08}\nInquiry Data = 00 00 06 12 5b 00 10 02 4b 4f 52 56 41 20\nAsset Tag: tag\n",
        i / 200 % 200, i % 200 + 1, i, i);
  }
  host::Recording recording;
  recording.commands.push_back({"netstat.exe", "", report, {}});
  const auto redacted = host::RedactRecording(recording, host::MakeRules(host::kPublicProfile),
                                              host::Pseudonyms("a key of the tests"));
  return redacted.leaks.empty() ? 0 : 1;
}
