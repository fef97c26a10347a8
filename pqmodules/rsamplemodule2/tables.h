// The table classes of the RAID logs: keys of the module's registry and classes of its instances.
#pragma once

namespace pq {

inline constexpr char kSample2Table1[] = "S2TABLE1";
inline constexpr char kSample2Table2[] = "S2TABLE2";
inline constexpr char kEventLog1[] = "EVENTLOG1";
inline constexpr char kEventLog2[] = "EVENTLOG2";
inline constexpr char kEventLog3[] = "EVENTLOG3";
inline constexpr char kEventLog4[] = "EVENTLOG4";
inline constexpr char kEventLog5[] = "EVENTLOG5";
inline constexpr char kFwTermLog[] = "FWTERMLOG";
inline constexpr char kPdList[] = "PDLIST";
inline constexpr char kTInfo[] = "TINFO";
inline constexpr char kVInfo[] = "VINFO";
inline constexpr char kPInfo[] = "PINFO";
inline constexpr char kSas2IrLog[] = "SAS2IRLOG";
inline constexpr char kEndDeviceInfo[] = "ENDDEVICEINFO";
inline constexpr char kArray[] = "ARRAY";
inline constexpr char kVolume[] = "VOLUME";
inline constexpr char kLsiLink[] = "LSILINK";

}  // namespace pq
