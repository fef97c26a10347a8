#include "tests/standin/console_bytes.h"

#include <windows.h>

namespace test {
namespace {

constexpr std::string_view kBlanks = " \t";

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

void WriteBytes(void* handle, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD written = 0;
    if (!WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
      return;
    }
    bytes.remove_prefix(written);
  }
}

OwnCommandLine ReadOwnCommandLine() {
  const std::string_view line = TrimBlanks(GetCommandLineA());
  bool isQuoted = false;
  std::size_t end = 0;
  for (; end < line.size(); ++end) {
    if (line[end] == '"') isQuoted = !isQuoted;
    if (!isQuoted && kBlanks.find(line[end]) != std::string_view::npos) break;
  }
  return {std::string(line.substr(0, end)), std::string(TrimBlanks(line.substr(end)))};
}

std::string NotRecognized(std::string_view program) {
  std::string words = "'";
  words += program;
  words +=
      "' is not recognized as an internal or external command,\r\n"
      "operable program or batch file.\r\n";
  return words;
}

}  // namespace test
