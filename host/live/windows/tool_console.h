// Keeps the console to the host: what the programs that it starts write there, beside what their
// command lines send elsewhere, comes here instead.
#pragma once

#include <mutex>
#include <string>
#include <thread>

namespace host {

/// From construction to destruction, for programs that are started meanwhile. This process itself
/// writes where it did, by its C runtime.
class ToolConsole {
 public:
  ToolConsole();
  ToolConsole(const ToolConsole&) = delete;
  ToolConsole& operator=(const ToolConsole&) = delete;
  ~ToolConsole();

  /// All that was written since the last call.
  std::string Take();

 private:
  void Drain();
  /// No tool is to wait for room; runs on `reader` until the end.
  void DrainEveryTick();

  void* readEnd = nullptr;  ///< null: the console is left to the tools
  void* writeEnd = nullptr;
  void* outputBefore = nullptr;
  void* errorBefore = nullptr;
  std::mutex mutex;  ///< guards the members below, and reading
  std::string text;
  bool isEnding = false;
  std::thread reader;
};

}  // namespace host
