// Whole files at once, and the words for a file that cannot be written.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

/// Throws std::runtime_error unless `path` leads to a file that can be opened without waiting for
/// anybody; the words are as for ReadWholeFile.
void CheckIsPlainFile(const std::filesystem::path& path);

/// The bytes of `path`. Throws std::runtime_error with the reason alone, such as "there is no such
/// file", so that the caller can name the file as its user knows it.
std::string ReadWholeFile(const std::filesystem::path& path);

/// Makes `bytes` all that `path` holds, and creates its folders. Throws std::runtime_error with the
/// words of DescribeUnwritable.
void WriteWholeFile(const std::filesystem::path& path, std::string_view bytes);

/// "cannot write PATH: " and the reason. Call it at once after the failure: errno tells the reason.
std::string DescribeUnwritable(const std::filesystem::path& path);
std::string DescribeUnwritable(const std::filesystem::path& path, std::string_view reason);

}  // namespace host
