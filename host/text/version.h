#pragma once

namespace host {

inline constexpr char kVersion[] = "0.1.0";

}  // namespace host
