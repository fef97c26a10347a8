// Keeps what a machine answers while modules collect from it, as a recording of that machine.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/recorded/interpreter.h"
#include "host/recorded/recording.h"
#include "host/secrets/amt_login.h"

namespace host {

/// What the recorder looks up on the machine by itself. Paths are as the modules give them.
class MachineView {
 public:
  virtual ~MachineView() = default;
  /// The bytes of a file; nothing when there is none of that name, or only a folder.
  virtual std::optional<std::string> ReadFile(const std::string& path) = 0;
  /// The paths of the files right in `folder`.
  virtual std::vector<std::string> ListFiles(const std::string& folder) = 0;
  virtual bool HasProgram(const std::string& program) = 0;
};

/// A run from its start until the next one, or until its process was awaited.
struct RecordedRun {
  Stage stage;  ///< the first of the pipeline: the others filter what it writes
  std::vector<std::vector<std::string>> filters;
  bool isPiped = false;
  std::optional<AmtLogin> login;  ///< that the tool was given
  RecordedCommand command;
};

/// Told of everything in the order in which it happens. A password that the operator types is in
/// nothing that Take() answers: kHiddenPassword stands for it.
class Recorder {
 public:
  /// `facts` is the recording without what is recorded; `machine` must outlive this object.
  Recorder(Recording facts, MachineView& machine);

  /// The interpreter is about to be started for `commandLine`, which begins with "/c ". `isPiped`:
  /// what the tool writes comes through a pipe.
  void BeginRun(const std::string& commandLine, bool isPiped);
  /// It could not be started.
  void FailRun(std::uint32_t error);
  /// The module read this from the tool's pipe.
  void AddOutput(std::string_view bytes);
  /// The process was awaited.
  void EndRun(std::uint32_t exitCode);

  /// The file or folder `path` exists, as a module found out.
  void KeepTested(const std::string& path) { KeepFile(path); }
  /// A module is about to open `path`.
  void KeepOpened(const std::string& path);
  /// The operator typed this.
  void AddTyped(std::string_view bytes) { typed += bytes; }

  /// What was recorded; the recorder is empty afterwards.
  Recording Take();

 private:
  void MarkLoginLine();
  void KeepCopied(const std::string& arguments);
  void KeepFile(const std::string& path);
  void CloseRun();
  void TakeOutput();
  bool IsForeignProgram() const;
  void DropRepeatedEnds();
  std::string HideLines() const;

  Recording recording;
  MachineView& machine;
  std::optional<RecordedRun> run;
  std::string typed;
  std::set<std::size_t> loginLines;  ///< those of `typed` that a password came from
  std::set<std::string> knownFiles;  ///< lower-case full paths of kept and of written files
  std::set<std::string> readOnly;    ///< the same of files that could not be written
};

}  // namespace host
