// Keeps the answers of a machine as a recording, while modules collect from it.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/recorded/interpreter.h"
#include "host/recorded/recording.h"
#include "host/recording/files_before.h"
#include "host/recording/machine_view.h"
#include "host/secrets/amt_login.h"

namespace host {

/// A run of the interpreter, until its process was awaited or the next one starts.
struct RecordedRun {
  Stage stage;                                    ///< the first of the pipeline
  std::vector<std::vector<std::string>> filters;  ///< the texts of each further stage, a findstr
  bool isPiped = false;
  std::optional<AmtLogin> login;  ///< given to the tool
  RecordedCommand command;
};

/// Is told of everything in the order in which it happens. In what Take() returns, kHiddenPassword
/// replaces each password that the operator typed.
class Recorder {
 public:
  /// `facts` describes the machine, without commands and files; `machine` must outlive this object.
  /// No tool has run yet.
  Recorder(Recording facts, MachineView& machine);

  /// The interpreter is about to be started for `commandLine`, which begins with "/c ". `isPiped`:
  /// the tool's output comes through a pipe.
  void BeginRun(std::string_view commandLine, bool isPiped);
  /// It could not be started.
  void FailRun(std::uint32_t error);
  /// A host ended it at its time limit.
  void MarkEnded();
  /// The module read this from the tool's pipe.
  void AddOutput(std::string_view bytes);
  /// The process was awaited.
  void EndRun(std::uint32_t exitCode);

  /// A module found that the file or folder `path` exists.
  void KeepTested(const std::string& path) { KeepFile(path); }
  /// A module is about to open `path`.
  void KeepOpened(const std::string& path);
  /// The operator typed this.
  void AddTyped(std::string_view bytes) { typed.Append(bytes); }

  /// Returns the recording and leaves the recorder empty.
  Recording Take();

 private:
  void MarkLoginLine();
  void KeepCopied(const std::string& arguments);
  void KeepFile(const std::string& path);
  void CloseRun();
  void TakeOutput();
  bool NeedsEntry() const;
  void DropRepeatedEnds();
  std::string HideLines() const;

  Recording recording;
  MachineView& machine;
  FilesBefore filesBefore;
  std::optional<RecordedRun> run;
  Secret typed;
  std::set<std::size_t> loginLines;  ///< lines of `typed` with a password that was used
  std::set<std::string> knownFiles;  ///< keys of files that were kept, or written by a command
  std::set<std::string> readOnly;    ///< keys of files that could not be written
};

}  // namespace host
