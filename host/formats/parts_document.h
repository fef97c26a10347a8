// docs/parts.md: the tables of parts and what their columns hold.
#pragma once

#include <string>

namespace host {

/// The document, in Markdown, from what the tables of parts say of themselves.
std::string WritePartsDocument();

}  // namespace host
