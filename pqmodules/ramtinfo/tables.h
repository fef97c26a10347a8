// The table class of the AMT module: key of its registry and class of its instances.
#pragma once

namespace pq {

inline constexpr char kAmtLog[] = "AMTLOG";

}  // namespace pq
