#include "pqmodules/raid/reports.h"

#include <utility>

namespace pq {

ToolDescription DescribeStorcli() { return {kStorcli, "Broadcom, formerly LSI", "StorCLI"}; }

AnswerExplanation ExplainNoLsiController(std::vector<std::string> tables) {
  return {{kStorcli, kCountArguments, kCountReportName},
          std::string(kCountLabel) + " 0",
          "no such device",
          "storcli counts no controller",
          std::move(tables)};
}

}  // namespace pq
