// What a collection says about the machine that it came from.
#pragma once

#include <cstdint>
#include <string>

#include "frame/platform.h"

namespace host {

struct MachineFacts {
  bool recorded = false;    ///< a recording stood for the machine
  std::string description;  ///< UTF-8: the recording's own words, or what the system calls itself
  std::string name;         ///< UTF-8; empty when not known
  std::uint32_t languageId = pq::kUsEnglish;
  /// The code page of the bytes that its tools print.
  std::uint32_t codePage = 1252;
  std::string hostExecutable;  ///< bytes in that code page
  std::string logFolder;       ///< bytes in that code page; ends with a backslash
};

/// What only the machine itself tells; a recording knows none of it.
struct Surroundings {
  bool hasInterpreter = false;
  bool canWriteLogFolder = false;  ///< the log folder, or the folder that it would be made in
  bool isElevated = false;
  std::uint64_t freeBytes = 0;  ///< on the log folder's disk
  std::string libraryProblem;   ///< UTF-8: why the library cannot be used; empty when it can
};

}  // namespace host
