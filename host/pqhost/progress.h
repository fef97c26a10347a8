// What a person at a terminal sees while a collection runs: one line that says which module runs
// which tool, and for how long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

#include "host/pqhost/collection_listener.h"

namespace host {

class ProgressLine final : public CollectionListener {
 public:
  /// `out` is a terminal of `width` columns; the line is wiped off it in the end. Nothing else may
  /// write to it between the calls but what OnConsole and OnToolConsole announce.
  ProgressLine(std::ostream& out, unsigned width);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine() override;

  void Module(const std::string& name, const std::string& description) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnSystem(const std::string& command) override;
  void OnConsole(std::string_view text) override;
  void OnToolConsole(std::string_view text) override;

 private:
  using Clock = std::chrono::steady_clock;

  void Show(const std::string& toolNow);
  void Hide();
  void Draw();
  void Wipe();
  void Tick();

  std::ostream& out;
  const unsigned width;
  const Clock::time_point begin = Clock::now();

  std::mutex mutex;  ///< guards all below, and the terminal
  std::condition_variable wake;
  std::string module;
  std::string tool;
  Clock::time_point toolBegin = begin;
  bool shown = false;   ///< the line stands on the terminal
  bool wanted = false;  ///< the line may be drawn
  bool ending = false;
  std::thread ticker;
};

}  // namespace host
