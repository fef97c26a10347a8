// Files that this program wrote, whatever they are called.
#pragma once

#include <filesystem>
#include <string>

#include "host/collect/collection.h"

namespace host {

enum class KeptFile {
  kRecording,  ///< a folder or a ZIP file
  kDatabase,
  kReport,
  kJson,
};

/// By what is in it. Throws UsageError when it is none of them, or cannot be read.
KeptFile RecogniseFile(const std::filesystem::path& path);

/// The collection in a file that is no recording; `kind` is that of the file. Throws UsageError
/// with one line that names it.
Collection ReadResult(const std::filesystem::path& path, KeptFile kind);

/// What such a file does not have of the collection, as one line of UTF-8.
std::string DescribeLoss(const std::filesystem::path& path, KeptFile kind);

}  // namespace host
