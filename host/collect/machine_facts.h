// Facts about the machine that a collection came from.
#pragma once

#include <cstdint>
#include <string>

#include "frame/platform.h"

namespace host {

struct MachineFacts {
  bool recorded = false;    ///< the machine was a recording
  std::string description;  ///< UTF-8: the recording's own words, or the system's name
  std::string name;         ///< UTF-8; empty when not known
  std::uint32_t languageId = pq::kUsEnglish;
  /// The code page of the bytes that its tools print.
  std::uint32_t codePage = 1252;
  std::string hostExecutable;  ///< bytes in that code page
  std::string logFolder;       ///< bytes in that code page; ends with a backslash
};

/// Facts that only the machine itself tells; no recording holds them.
struct Surroundings {
  bool hasInterpreter = false;
  bool canWriteLogFolder = false;  ///< the log folder, or the folder that it would be made in
  bool isElevated = false;
  std::uint64_t freeBytes = 0;  ///< on the log folder's disk
  std::string libraryProblem;   ///< UTF-8: why the library cannot be used; empty when it can
};

}  // namespace host
