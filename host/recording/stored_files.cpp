#include "host/recording/stored_files.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/files/file_handle.h"
#include "host/files/whole_file.h"
#include "host/files/zip_reader.h"
#include "host/recording/recording_format.h"
#include "host/recording/strict_json.h"
#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {
namespace {

namespace fs = std::filesystem;

bool HasPartThatGoesUp(std::string_view name) {
  while (!name.empty()) {
    const std::string_view part = name.substr(0, name.find('/'));
    if (part == "..") return true;
    name.remove_prefix(std::min(part.size() + 1, name.size()));
  }
  return false;
}

/// Whether `name` means the same file on every system.
bool IsPortableName(std::string_view name) {
  const bool hasForbidden = std::any_of(name.begin(), name.end(), [](char c) {
    return c == '\\' || c == ':' || static_cast<unsigned char>(c) < ' ';
  });
  return !name.empty() && name.front() != '/' && !hasForbidden && !HasPartThatGoesUp(name);
}

class FolderFiles final : public StoredFiles {
 public:
  explicit FolderFiles(fs::path folder)
      : folder(std::move(folder)), realFolder(FindRealFolder(this->folder)) {}

  bool Has(const std::string& name) const override {
    std::error_code ignored;
    return fs::exists(fs::symlink_status(MakePath(name), ignored));
  }

  std::string Read(const std::string& name, const SizeCheck& checkSize) const override {
    const fs::path path = MakePath(name);
    std::error_code ignored;
    if (name == kRecordingFileName &&
        fs::symlink_status(path, ignored).type() == fs::file_type::not_found) {
      throw std::runtime_error("there is no such file; a folder without it is no recording");
    }
    const FileHandle file = OpenToRead(path);
    const fs::path real = FindRealPath(file, path);
    const bool isInside =
        !realFolder.empty() && !real.empty() &&
        std::mismatch(realFolder.begin(), realFolder.end(), real.begin(), real.end()).first ==
            realFolder.end();
    if (!isInside) throw std::runtime_error("leads out of the recording's folder");
    checkSize(file.Size());
    return ReadWholeFile(file);
  }

  std::string Describe(const std::string& name) const override { return PathText(MakePath(name)); }

 private:
  fs::path MakePath(const std::string& name) const { return folder / PathFromText(name); }

  fs::path folder;
  fs::path realFolder;  ///< without links
};

class ZipFiles final : public StoredFiles {
 public:
  ZipFiles(fs::path path, ZipBytes bytes, std::uint64_t mostFiles)
      : path(std::move(path)), zip(std::move(bytes), mostFiles) {}

  bool Has(const std::string& name) const override { return Find(name) != nullptr; }

  std::string Read(const std::string& name, const SizeCheck& checkSize) const override {
    const ZipEntry* entry = Find(name);
    if (entry == nullptr) {
      // Without recording.json, which is looked for first, nothing else is.
      throw std::runtime_error("there is no such file" +
                               (name == kRecordingFileName ? HintAtFolder(name) : std::string()));
    }
    checkSize(entry->size);
    return zip.Read(*entry);
  }

  std::string Describe(const std::string& name) const override {
    return PathText(path) + ": " + name;
  }

 private:
  const ZipEntry* Find(const std::string& name) const {
    if (!IsAscii(name)) return nullptr;
    // As a folder would take it: "a/./b" is "a/b".
    const auto found = zip.Entries().find(fs::path(name).lexically_normal().generic_string());
    return found == zip.Entries().end() ? nullptr : &found->second;
  }

  /// Mostly somebody has packed the folder instead of the files in it.
  std::string HintAtFolder(const std::string& name) const {
    for (const auto& [inZip, entry] : zip.Entries()) {
      if (!inZip.ends_with("/" + name)) continue;
      return ", but " + QuoteText(inZip) + ": pack what is in that folder, not the folder";
    }
    return {};
  }

  fs::path path;
  ZipReader zip;
};

}  // namespace

void CheckFileName(const std::string& name) {
  if (IsPortableName(name)) return;
  throw std::runtime_error(QuoteText(name) +
                           " has to name a file in the recording's folder, by a path with / "
                           "that does not leave it");
}

namespace {

std::uint64_t CountMostFiles(const RecordingLimits& limits) {
  // recording.json, manifest.sha256 and submission.json are there as well.
  constexpr std::uint64_t kOwnFiles = 3;
  return limits.files + kOwnFiles;
}

}  // namespace

std::unique_ptr<StoredFiles> OpenZippedFiles(std::string bytes, const fs::path& name,
                                             const RecordingLimits& limits) {
  return std::make_unique<ZipFiles>(name, ZipBytes(std::move(bytes)), CountMostFiles(limits));
}

std::unique_ptr<StoredFiles> OpenStoredFiles(const fs::path& recording,
                                             const RecordingLimits& limits) {
  std::error_code ignored;
  if (fs::is_directory(recording, ignored)) return std::make_unique<FolderFiles>(recording);
  if (!fs::exists(recording, ignored)) {
    throw std::runtime_error(
        std::string("there is no such folder or ZIP file; a recording is a folder with a file ") +
        kRecordingFileName + ", or a ZIP file of what is in that folder");
  }
  if (recording.filename() == kRecordingFileName) {
    throw std::runtime_error("is one file of a recording; give the folder that it is in");
  }
  return std::make_unique<ZipFiles>(recording, ZipBytes(OpenToRead(recording)),
                                    CountMostFiles(limits));
}

}  // namespace host
