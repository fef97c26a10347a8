// Report files that go into a row whole, as raw files for the host to show.
#pragma once

#include <memory>
#include <string>

#include "frame/module.h"
#include "frame/platform.h"
#include "frame/row_buffer.h"

namespace pq {

/// The whole text of `file`, zero-terminated; a line's text ends at its first NUL. Logs the size of
/// the stored bytes. Null, and logged, when there is no memory for it.
std::unique_ptr<char[]> ReadWholeReport(CallerLog log, TextFile& file);

/// Sets `column` to `text`, which is given up early since reports can be large and the
/// row takes a copy, and marks it as the raw file `fileName`.
void AddAttachment(RInstance& row, const Column& column, std::unique_ptr<char[]> text,
                   const std::string& fileName);

}  // namespace pq
