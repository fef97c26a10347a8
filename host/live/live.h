// A collection on this very machine: the library is loaded and the machine's own tools run. Only
// Windows can do that (host/live); elsewhere LoadLiveLibrary says so.
#pragma once

#include <boost/shared_ptr.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "frame/halyard/repository.h"
#include "host/collect/collection_listener.h"
#include "host/collect/machine_facts.h"
#include "host/live/login_prompt.h"
#include "host/live/tool_limits.h"
#include "host/recording/recorder.h"

namespace host {

/// The library's file name; it is beside the program.
inline constexpr char kPluginFileName[] = "repository_pqmodule.dll";

/// Why the library cannot be used, and a remedy. UTF-8, one line.
class LiveError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The loaded library. It must outlive every module that it added.
class LiveLibrary {
 public:
  virtual ~LiveLibrary() = default;
  /// Calls the library's exported function of that name. Throws LiveError when it reports failure.
  virtual void AddModules(
      std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules) = 0;
};

/// How the host accompanies the library's work on the machine. All of it must outlive the use of
/// the library.
struct LiveWatch {
  /// Sees it, and says when no more tools are to start; null: the library is left to itself, and
  /// the members below mean nothing.
  CollectionListener* listener = nullptr;
  /// Keeps the machine's answers once there is a recorder; null: never.
  std::optional<Recorder>* recorder = nullptr;
  ToolLimits toolLimits = {};
  LoginPrompt* prompt = nullptr;  ///< answers the AMT module
};

/// Loads `plugin`, a path to the library's file. Throws LiveError.
std::unique_ptr<LiveLibrary> LoadLiveLibrary(const std::filesystem::path& plugin,
                                             const LiveWatch& watch);

/// This machine as a recorder looks things up on it.
std::unique_ptr<MachineView> ViewLiveMachine();

/// A live machine that is ready for a collection.
struct LiveMachine {
  MachineFacts facts;
  std::string logFolder;  ///< as the plug-in hands it to the system's narrow functions
};

/// A recording of this machine that holds nothing yet but its facts.
Recording DescribeLiveMachine(const LiveMachine& machine);

/// Path of the program, given with its folder or as the interpreter looks for it along PATH, with
/// the extensions of PATHEXT; nothing when this machine has none. In the machine's code page.
std::optional<std::string> LocateProgram(const std::string& program);

/// The log folder when none is given: "logs" in the current folder or, where that cannot be written
/// or someone else has made it, in the user's own place for such data. Nothing is created.
std::filesystem::path FindDefaultLogFolder();

/// This machine's facts, with `logFolder` as its log folder; nothing is created. Throws LiveError
/// when the folder's path does not fit the modules' room or has no form in the machine's code page.
MachineFacts DescribeThisMachine(const std::filesystem::path& logFolder);

/// Who may use a folder that is created.
enum class FolderAccess {
  kInherited,  ///< as the folder above says
  kOwn,        ///< administrators and the user
};

/// As above, and creates `logFolder` with its parents. Throws LiveError.
LiveMachine PrepareLiveMachine(const std::filesystem::path& logFolder, FolderAccess access);

/// Whether this program has an administrator's rights, which some tools need.
bool IsElevated();

/// All else that a collection into `logFolder` depends on; leaves nothing on the machine. The
/// library is not looked at.
Surroundings LookAround(const std::filesystem::path& logFolder);

}  // namespace host
