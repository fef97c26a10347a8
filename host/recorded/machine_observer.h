// How a host sees what modules do to the machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// "The operation was canceled by the user": the system error of what is refused.
inline constexpr std::uint32_t kErrorCancelled = 1223;

/// Called on the collecting thread, in the order of the calls. Texts are bytes in the machine's
/// code page.
class MachineObserver {
 public:
  virtual ~MachineObserver() = default;
  /// A start of the interpreter is attempted; it may still fail.
  virtual void OnProcess(const std::string& /*application*/, const std::string& /*commandLine*/,
                         bool /*inheritHandles*/, bool /*pipe*/) {}
  /// The process started last was awaited and has ended.
  virtual void OnProcessEnd(std::uint32_t /*exitCode*/) {}
  /// The host ended the process started last, or children that it left, after so many seconds.
  virtual void OnToolEnded(unsigned /*seconds*/) {}
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
