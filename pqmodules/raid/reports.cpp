#include "pqmodules/raid/reports.h"

#include <utility>

namespace pq {

ToolDescription DescribeStorcli() { return {kStorcli, "Broadcom, formerly LSI", "StorCLI"}; }

ReasonLine DescribeStorcliReason() { return {kStorcli, "Description = ", "None"}; }

// The command's type is named: g++ 12 destroys one that is only braces twice when memory is short.
AnswerExplanation ExplainNoLsiController(std::vector<std::string> tables) {
  return {ToolCommand{kStorcli, kCountArguments, kCountReportName}, std::string(kCountLabel) + " 0",
          "no such device", "storcli counts no controller", std::move(tables)};
}

Omission LeaveOutOtherLsiControllers() {
  return {.text = "Only controller 0 is read.",
          .note = "of controller 0 alone: storcli counts {} controllers (see LSILINK)",
          .sign = OmissionSign::kCount,
          .command = ToolCommand{kStorcli, kCountArguments, kCountReportName},
          .label = std::string(kCountLabel),
          .most = 1};
}

}  // namespace pq
