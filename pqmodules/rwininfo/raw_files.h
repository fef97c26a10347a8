// Files that the Windows module leaves in the log folder as they are: output of commands, copies
// of network configuration files, and the SMBIOS dump.
#pragma once

#include "frame/description.h"
#include "pqmodules/rwininfo/collection.h"

namespace pq {

/// A command whose output becomes a file of the log folder.
struct ReportStep {
  const char* command;
  const char* file;
  Sentence failure;
};
inline constexpr ReportStep kRoute{"/c route print >\"", "route.txt",
                                   "CreateProcess failed in getting route("};
inline constexpr ReportStep kArp{"/c arp.exe -a >\"", "arp.txt",
                                 "CreateProcess failed in getting arp data("};
inline constexpr ReportStep kNetstat{"/c netstat.exe >\"", "netstat.txt",
                                     "CreateProcess failed in getting netstat data("};
inline constexpr ReportStep kShares{"/c net share >\"", "netshare.txt",
                                    "CreateProcess failed in getting netshare("};

/// A file of the machine that is copied into the log folder when it is there. The folder is spelt
/// in two ways; both name the same one.
struct CopyStep {
  const char* tested;
  const char* source;
  const char* file;
  Sentence failure;
};
inline constexpr CopyStep kHostsIcs{"C:\\Windows\\System32\\drivers\\etc\\hosts.ics",
                                    "C:\\Windows\\System32\\drivers\\etc\\hosts.ics",
                                    "hosts.ics.txt", "CreateProcess failed in copying hosts.ics("};
inline constexpr CopyStep kHosts{"C:\\Windows\\System32\\drivers\\etc\\hosts",
                                 "C:\\WINDOWS\\system32\\drivers\\etc\\hosts", "hosts.txt",
                                 "CreateProcess failed in copying hosts("};
inline constexpr CopyStep kProtocol{"C:\\Windows\\System32\\drivers\\etc\\protocol",
                                    "C:\\WINDOWS\\system32\\drivers\\etc\\protocol", "protocol.txt",
                                    "CreateProcess failed in copying protocol("};
inline constexpr CopyStep kLmhosts{"C:\\Windows\\System32\\drivers\\etc\\lmhosts.sam",
                                   "C:\\WINDOWS\\system32\\drivers\\etc\\lmhosts.sam",
                                   "lmhosts.sam.txt",
                                   "CreateProcess failed in copying lmhosts.sam("};

void WriteReport(const WindowsCollection& collection, const ReportStep& step);
void CopyIfPresent(const WindowsCollection& collection, const CopyStep& step);
void WriteSmbiosDump(const WindowsCollection& collection);

void DescribeRawFiles(ModuleDescription& module);

}  // namespace pq
