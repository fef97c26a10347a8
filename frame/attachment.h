// Report files that go into a row whole, as raw files for the host to show.
#pragma once

#include <memory>
#include <string>

#include "frame/module.h"
#include "frame/platform.h"

namespace pq {

/// The whole text of `file`, zero-terminated; a line's text ends at its first NUL. Logs the size of
/// the stored bytes. Null, and logged, when there is no memory for it.
std::unique_ptr<char[]> ReadWholeReport(const ModuleLog& log, TextFile& file);

/// Sets the property `key` to `text`, which is given up early since reports can be large and the
/// row takes a copy, and marks it as the raw file `fileName`.
void AddAttachment(RInstance& row, const std::string& key, const std::string& label,
                   std::unique_ptr<char[]> text, const std::string& fileName);

}  // namespace pq
