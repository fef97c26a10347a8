// The files of the log folder before a collection, to tell what its tools have written since. Not
// by the clock alone: another machine, with another clock, may keep the folder.
#pragma once

#include <map>
#include <string>

#include "host/recording/machine_view.h"

namespace host {

class FilesBefore {
 public:
  /// `logFolder` ends with a backslash, and is where relative paths lead. `machine` must outlive
  /// this object.
  FilesBefore(MachineView& machine, const std::string& logFolder);

  /// Whether `path` is right in the log folder.
  bool IsLogFile(const std::string& path) const;
  /// Whether `path` is a file of the log folder that nothing has written since.
  bool IsUnchanged(const std::string& path) const;

 private:
  std::string MakeKey(const std::string& path) const;

  MachineView& machine;
  std::string logFolder;
  std::map<std::string, FileState> states;
};

}  // namespace host
