// The data of a report: the JSON document of its collection, packed, which its page and this
// program unpack.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "host/answers/assessment.h"
#include "host/collect/collection.h"
#include "host/text/screen.h"

namespace host {

/// Begins the element with the data, whose text is gzip in Base64; empty when it is too large.
inline constexpr std::string_view kPackedDataHead =
    "<script type=\"application/gzip\" id=\"packed\">";

/// Packed; a report has no more of it.
inline constexpr std::size_t kMostPackedBytes = std::size_t{24} << 20;

/// The whole element.
void WritePackedData(const Collection& collection, const Assessment* assessment,
                     const Screen& screen, std::ostream& out);

/// The JSON document in the report `html`. Throws std::runtime_error, with the reason alone, when
/// it has none, and when that is damaged or has more than `most` bytes.
std::string UnpackData(std::string_view html, std::size_t most);

}  // namespace host
