// Common knowledge of both RAID modules on their reports: the tool for LSI controllers, its count
// of controllers, and the log's words for a report that cannot be opened.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "frame/module.h"

namespace pq {

/// The tool for LSI controllers, below the host's folder.
inline constexpr char kStorcli[] = "\\utilities\\lsi\\storcli.exe";

/// Its label before its own version, at the top of its reports.
inline constexpr char kStorcliVersion[] = "CLI Version =";

/// How it is asked for the number of controllers, and its label before the number.
inline constexpr char kCountArguments[] = "show ctrlcount";
inline constexpr char kCountReportName[] = "ctrlcount.txt";
inline constexpr std::string_view kCountLabel = "Controller Count =";

/// Logged when a report cannot be opened, unless a step has its own words.
inline constexpr Sentence kNoReport{"Failed to open raid log file", kCallersLine};

/// storcli is about LSI's controllers.
inline constexpr Area kLsiArea{"LSI RAID", "an LSI controller"};

/// Where storcli comes from.
ToolDescription DescribeStorcli();

/// Its label before the reason of a failure.
ReasonLine DescribeStorcliReason();

/// How storcli says that it counts no controller, which leaves `tables` empty.
AnswerExplanation ExplainNoLsiController(std::vector<std::string> tables);

/// That a table has only controller 0. LSILINK has the reports on all.
Omission LeaveOutOtherLsiControllers();

}  // namespace pq
