// The table classes of the Windows module: keys of its registry and classes of its instances.
#pragma once

namespace pq {

inline constexpr char kArpInfo[] = "ARPINFO";
inline constexpr char kNetstatInfo[] = "NETSTATINFO";

}  // namespace pq
