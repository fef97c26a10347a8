// The real library on a machine that answers from a recording: what it asks the system for, with
// every argument, in one list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/recorded/recording.h"

namespace test {

/// What the processes are that the library starts.
enum class Tools {
  kAnswered,  ///< none: the recording answers at once, and events pass for process and thread
  kReal,      ///< a stand-in for the interpreter, which starts stand-ins for the tools
};

struct CallWatch;

/// Loads the library and watches its calls of the system from construction to destruction. Not more
/// than one at a time.
class LibraryCalls {
 public:
  /// With real tools the host is moved into a folder of this object's, and those of its tools are
  /// there that belong into `pq_tools`.
  explicit LibraryCalls(const host::Recording& recording, Tools tools = Tools::kAnswered);
  LibraryCalls(const LibraryCalls&) = delete;
  LibraryCalls& operator=(const LibraryCalls&) = delete;
  /// Closes what is still open.
  ~LibraryCalls();

  /// Has the system refuse to create the `number`th pipe, from 1.
  void FailPipe(int number, std::uint32_t error);

  /// Has a new object of the module fill a table, several times over.
  void Collect(const std::string& module, const std::string& table, int enumerations = 1);

  /// One call a line, in order, with what was handed over indented below it; the host's folders are
  /// left out. A handle is named by its part in the step that is under way, one of a step before as
  /// "an earlier" one. Reads of a pipe are one line up to the one that fails. Log lines that tell a
  /// system error are in between.
  std::string Text() const;
  void ForgetCalls();

  /// What the library was given and has not closed, such as "process" or "ctrlcount.txt", by name.
  std::vector<std::string> ListOpen() const;

 private:
  std::unique_ptr<CallWatch> watch;
};

/// The imports that are watched, by their names.
std::vector<std::string> ListWatchedImports();

/// How many handles this process has open, by the system's account.
std::size_t CountHandles();

}  // namespace test
