// Labels and values as people see them on a screen: trimmed, cut where they are very long, and with
// nothing in them that a terminal would obey.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/collect/table_view.h"

namespace host {

/// The label, or the key of a property without one.
std::string ShowLabel(std::string_view label, std::string_view key);

/// The value with its line feeds; of a whole file only its name and size.
std::string ShowCell(const CellView& cell);

/// The lines of a cell that is `width` columns wide. A cell of too many lines ends with
/// a note of how many are missing.
std::vector<std::string> WrapCell(std::string_view shown, std::size_t width);

}  // namespace host
