#include "host/recorded/machine_files.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/recorded/interpreter.h"
#include "host/text/ascii.h"

namespace host {

std::string_view FolderOf(std::string_view path) {
  const std::size_t backslash = path.rfind('\\');
  return backslash == std::string_view::npos ? std::string_view() : path.substr(0, backslash);
}

std::string_view FileNameOf(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

MachineFiles::MachineFiles(const Recording& recording) : workingFolder(recording.workingFolder) {
  AddFolder(MakeKey(recording.workingFolder));
  AddFolder(MakeKey(FolderOf(recording.hostExecutable)));
  if (recording.hasLogFolder) AddFolder(MakeKey(recording.logFolder));
  for (const std::string& path : recording.readOnly) readOnly.insert(MakeKey(path));
  for (const auto& [path, bytes] : recording.files) Store(path, bytes);
  for (auto& [key, file] : files) file.isFromBefore = true;
}

std::string MachineFiles::FullPath(std::string_view path) const {
  const bool hasDrive = path.size() >= 2 && path[1] == ':';
  std::string whole(path);
  if (!hasDrive && !path.starts_with('\\')) whole = workingFolder + '\\' + whole;
  if (!hasDrive && path.starts_with('\\') && !path.starts_with("\\\\")) {
    whole = workingFolder.substr(0, 2) + whole;
  }
  std::vector<std::string> names;
  for (std::string_view rest = whole; !rest.empty();) {
    const std::string_view name = rest.substr(0, rest.find('\\'));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name == ".." && names.size() > 1) names.pop_back();
    if (!name.empty() && name != "." && name != "..") names.emplace_back(name);
  }
  std::string full;
  for (const std::string& name : names) full.append(full.empty() ? "" : "\\").append(name);
  return whole.starts_with("\\\\") ? "\\\\" + full : full;
}

std::string MachineFiles::MakeKey(std::string_view path) const { return LowerCase(FullPath(path)); }

void MachineFiles::AddFolder(std::string key) {
  for (; !key.empty(); key.resize(FolderOf(key).size())) folders.insert(key);
}

bool MachineFiles::HasFolder(const std::string& key) const {
  if (folders.contains(key)) return true;
  const std::string inside = key + '\\';
  const auto first = files.lower_bound(inside);
  return first != files.end() && first->first.starts_with(inside);
}

bool MachineFiles::IsReadOnly(std::string key) const {
  for (; !key.empty(); key.resize(FolderOf(key).size())) {
    if (readOnly.contains(key)) return true;
  }
  return false;
}

bool MachineFiles::FolderExists(std::string_view path) const { return HasFolder(MakeKey(path)); }

std::optional<Bytes> MachineFiles::Find(std::string_view path) const {
  const auto file = files.find(MakeKey(path));
  if (file == files.end()) return std::nullopt;
  return file->second.bytes;
}

bool MachineFiles::IsFromBefore(std::string_view path) const {
  const auto file = files.find(MakeKey(path));
  return file != files.end() && file->second.isFromBefore;
}

FileResult MachineFiles::Create(std::string_view path) {
  const std::string key = MakeKey(path);
  if (IsReadOnly(key) || HasFolder(key)) return FileResult::kAccessDenied;
  if (!HasFolder(std::string(FolderOf(key)))) return FileResult::kNoSuchPath;
  Store(path, {});
  return FileResult::kDone;
}

void MachineFiles::Store(std::string_view path, Bytes bytes) {
  StoredFile& file = files[MakeKey(path)];
  if (file.path.empty()) file.path = FullPath(path);
  file.bytes = std::move(bytes);
  file.isFromBefore = false;
}

FileResult MachineFiles::MakeFolder(std::string_view path) {
  const std::string key = MakeKey(path);
  if (HasFolder(key) || files.contains(key)) return FileResult::kExists;
  if (IsReadOnly(key)) return FileResult::kAccessDenied;
  for (std::string_view above = FolderOf(key); !above.empty(); above = FolderOf(above)) {
    if (files.contains(std::string(above))) return FileResult::kNoSuchPath;
  }
  AddFolder(key);
  return FileResult::kDone;
}

std::map<std::string, Bytes> MachineFiles::ListFiles(std::string_view folder) const {
  std::map<std::string, Bytes> inside;
  const std::string start = MakeKey(folder) + '\\';
  for (auto file = files.lower_bound(start); file != files.end() && file->first.starts_with(start);
       ++file) {
    if (file->first.find('\\', start.size()) != std::string::npos) continue;
    inside.emplace(FileNameOf(file->second.path), file->second.bytes);
  }
  return inside;
}

std::map<std::string, Bytes> MachineFiles::All() const {
  std::map<std::string, Bytes> all;
  for (const auto& [key, file] : files) all.emplace(file.path, file.bytes);
  return all;
}

}  // namespace host
