// What both RAID modules know of the reports that they read: the tool for LSI controllers, its
// count of controllers, and what the log says of a report that is not there.
#pragma once

#include <string_view>

namespace pq {

/// The tool for LSI controllers, behind the host's folder.
inline constexpr char kStorcli[] = "\\utilities\\lsi\\storcli.exe";

/// How it is asked for the number of controllers, and what stands before the number.
inline constexpr char kCountArguments[] = "show ctrlcount";
inline constexpr char kCountReportName[] = "ctrlcount.txt";
inline constexpr std::string_view kCountLabel = "Controller Count =";

/// Logged when a report cannot be opened, unless a step has its own words.
inline constexpr char kNoReport[] = "Failed to open raid log file";

}  // namespace pq
