// What both RAID modules know of the reports that they read: the tool for LSI controllers, its
// count of controllers, and what the log says when a report cannot be opened.
#pragma once

#include <string_view>

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
inline constexpr char kNoReport[] = "Failed to open raid log file";

}  // namespace pq
