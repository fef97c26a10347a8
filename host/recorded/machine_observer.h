// How a host follows the modules' work on the machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/text/bytes.h"

namespace host {

/// "The operation was canceled by the user": the system error of a refused start.
inline constexpr std::uint32_t kErrorCancelled = 1223;

/// "The timeout period expired": the exit code of a tool that a host ended at its time limit, so
/// that a recording tells. Small numbers are answers of the tools that test for devices.
inline constexpr std::uint32_t kEndedExitCode = 1460;

/// The output of a command line. Paths and texts are bytes in the machine's code page.
struct ToolAnswer {
  Bytes output;      ///< written to the pipe or to the host's console
  std::string file;  ///< that standard output went to; empty when it went to none
  Bytes fileText;
  Bytes unfiltered = {};  ///< printed into the pipe of a filter; empty when that is not known
};

/// Called on the collecting thread, in the order of the calls. Texts are bytes in the machine's
/// code page.
class MachineObserver {
 public:
  virtual ~MachineObserver() = default;
  /// A start of the interpreter is attempted; it may still fail.
  virtual void OnProcess(const std::string& /*application*/, const std::string& /*commandLine*/,
                         bool /*inheritHandles*/, bool /*pipe*/) {}
  /// The output of the tool started last; told before its process is awaited, or without that.
  virtual void OnAnswer(const ToolAnswer& /*answer*/) {}
  /// The process started last was awaited and has ended.
  virtual void OnProcessEnd(std::uint32_t /*exitCode*/) {}
  /// The host ended the process started last, or children that it left, after so many seconds; 0:
  /// nobody knows how many, as of a recorded one.
  virtual void OnToolEnded(unsigned /*seconds*/) {}
  /// The start that was seen last is refused: its tool was ended after so many seconds before, or
  /// 0, as above.
  virtual void OnToolRefused(unsigned /*seconds*/) {}
  /// The process started last, with its children, was given no more than so much memory and wanted
  /// more.
  virtual void OnToolOutOfMemory(unsigned /*mebibytes*/) {}
  /// A module asked the operator for a login and got none; `why` is for people.
  virtual void OnNoLogin(const std::string& /*why*/) {}
  /// The collection was interrupted: the start that was seen last, or the pipe that would come
  /// before it, is refused.
  virtual void OnRefused() {}
  /// A call of the standard library's `system`.
  virtual void OnSystem(const std::string& /*command*/) {}
  /// A file is opened, or tried to be; `path` as given.
  virtual void OnOpen(const std::string& /*path*/, const std::string& /*mode*/) {}
  /// A module wrote to standard output.
  virtual void OnConsole(std::string_view /*text*/) {}
  /// A tool wrote to the host's own console.
  virtual void OnToolConsole(std::string_view /*text*/) {}
};

}  // namespace host
