// The ten tables of the BMC module and the property keys of those that number them.
#pragma once

#include <string>

namespace pq {

/// Table classes: keys of the module's registry and classes of its instances.
inline constexpr char kMcInfo[] = "MCINFO";
inline constexpr char kSelfInfo[] = "SELFINFO";
inline constexpr char kVerInfo[] = "VERINFO";
inline constexpr char kLanInfo[] = "LANINFO";
inline constexpr char kLedInfo[] = "LEDINFO";
inline constexpr char kPsuInfo[] = "PSUINFO";
inline constexpr char kSensorInfo[] = "SENSORINFO";
inline constexpr char kFruInfo[] = "FRUINFO";
inline constexpr char kSdrInfo[] = "SDRINFO";
inline constexpr char kSelInfo[] = "SELINFO";

/// Numbered property keys, such as "MC1" to "MC12".
struct KeyFamily {
  const char* prefix = "";
  unsigned count = 0;  ///< the most properties that a table carries

  /// The key at `index`, counted from 0.
  std::string MakeKey(unsigned index) const { return prefix + std::to_string(index + 1); }
};

inline constexpr KeyFamily kMcKeys{"MC", 12};
inline constexpr KeyFamily kSelfKeys{"self", 2};
inline constexpr KeyFamily kVerKeys{"VER", 16};
inline constexpr KeyFamily kLanKeys{"LAN", 12};
// Reserved: these tables carry all their lines under one key.
inline constexpr KeyFamily kPsuKeys{"PSU", 26};
inline constexpr KeyFamily kLedKeys{"LED", 16};
inline constexpr KeyFamily kFruKeys{"FRU", 160};

}  // namespace pq
