// docs/tables.md: every table, its tools and the files that these leave, and what its columns hold.
#pragma once

#include <string>

namespace host {

/// The document, in Markdown, from what the modules register and describe.
std::string WriteTablesDocument();

}  // namespace host
