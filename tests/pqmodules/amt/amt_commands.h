// What the AMT module's tests expect the interpreter to be given.
#pragma once

namespace test {

inline constexpr char kPresenceCommand[] = "/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt";
inline constexpr char kLogCommand[] =
    "/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.9 keeper "
    "Q7-secret>\"C:\\Halyard\\logs\\amtlog.txt\"\"";

}  // namespace test
