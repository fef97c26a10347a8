// Whole files at once, and the words for a file that cannot be written.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/files/file_handle.h"

namespace host {

/// Throws std::runtime_error unless `path` leads to a file that can be opened without waiting for
/// anybody; the words are as for ReadWholeFile.
void CheckIsPlainFile(const std::filesystem::path& path);

/// The bytes of `path`. Throws std::runtime_error with the reason alone, such as "there is no such
/// file", so that the caller can name the file as its user knows it.
std::string ReadWholeFile(const std::filesystem::path& path);
/// The same of a file that is open and unread.
std::string ReadWholeFile(const FileHandle& file);

/// Makes a new file of `bytes`, and its folders. Throws std::runtime_error with the words of
/// DescribeUnwritable, also when there is a file, or a link, already; no part of a file is left.
void CreateWholeFile(const std::filesystem::path& path, std::string_view bytes,
                     Readers readers = Readers::kOwner);

/// Makes the new folder `folder`, and those above. Throws UsageError when it cannot be made, and
/// when it contains something already; `option` is the one to be given another folder.
void CreateEmptyFolder(const std::filesystem::path& folder, std::string_view option);

/// "cannot write PATH: " and the reason. Call it at once after the failure: errno tells the reason.
std::string DescribeUnwritable(const std::filesystem::path& path);
std::string DescribeUnwritable(const std::filesystem::path& path, std::string_view reason);

}  // namespace host
