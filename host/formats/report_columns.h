// Columns of parts as people read them.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// "media_errors" as "Media errors".
std::string LabelColumn(std::string_view column);

/// A value that FormatPartValue made a text of: sizes as "1.745 TiB", others with their unit.
std::string ShowPartText(std::string_view column, const std::string& text);

}  // namespace host
