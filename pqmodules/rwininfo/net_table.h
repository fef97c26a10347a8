// The ARP and the connection table, and finding their rows in the output of `arp -a` and `netstat`:
//
//   Interface: 10.0.0.7 --- 0x5
//     Internet Address      Physical Address      Type
//     10.0.0.1              00-1c-73-5a-90-02     dynamic
//
// Rows are told by their length and by counting lines, never by the titles.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "pqmodules/rwininfo/collection.h"

namespace pq {

/// Line ends are looked for in this many characters of an output.
inline constexpr std::size_t kScanLimit = 30720;
/// Of a longer ARP line only so many characters are taken.
inline constexpr std::size_t kArpLineLimit = 128;
/// ARP lines of this length and shorter (line end included) are titles and blank lines. The line of
/// column titles has just this length.
inline constexpr std::size_t kArpTitleLength = 52;
/// With fewer line ends an ARP output holds no rows.
inline constexpr std::size_t kArpMinLineEnds = 4;
/// The rows of a connection output begin after the fourth line end; with fewer than five line ends
/// there are none.
inline constexpr std::size_t kConnectionHeadLineEnds = 4;
inline constexpr std::size_t kConnectionMinLineEnds = 5;

/// The lines of an ARP output, and those that are kept.
struct ArpScan {
  std::vector<std::string_view> lines;  ///< each with its line end, cut at kArpLineLimit
  std::string rows;                     ///< the lines longer than kArpTitleLength, joined
  std::size_t end = 0;                  ///< where scanning stopped
};

/// Takes the ARP output `text` (without NUL) to pieces. The lines point into `text`.
ArpScan ScanArpLines(std::string_view text);

/// Position of the fourth line end of the connection output `text` (without NUL), where the rows
/// start; none when there is no fifth.
std::optional<std::size_t> FindConnectionRows(std::string_view text);

inline constexpr unsigned kArpMode = 1;
inline constexpr unsigned kConnectionMode = 2;

/// Runs `arp -a` (kArpMode) or `netstat` (kConnectionMode) on a US English system and adds the rows
/// of "ARPINFO" or "NETSTATINFO", one instance per printed row. Returns 1 when the tool could not
/// be run, otherwise 0, also without any row.
int CollectNetTable(const WindowsCollection& collection, unsigned mode);

void DescribeNetTables(ModuleDescription& module);

}  // namespace pq
