// A report of storcli inside a test.
#pragma once

#include <string_view>

#include "host/answers/parts/report.h"

namespace test {

/// `text` as the attachment `key` of the first row of LSILINK, on controller 0.
inline host::Report LsiReport(std::string_view text, std::string_view key = "lsishowall") {
  return {text, {"LSILINK", 1, std::string(key), 0, "storcli"}, "lsi0"};
}

}  // namespace test
