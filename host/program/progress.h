// A progress line: one line of a terminal that names the running task and its step, with the time
// that each has taken.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace host {

class ProgressLine {
 public:
  /// `out` is a terminal of `width` columns. Nothing else may write to it while the line is shown;
  /// the destructor clears the line.
  ProgressLine(std::ostream& out, unsigned width);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  /// Shows a task, such as a module, of which no step has begun yet. Names are UTF-8; their control
  /// characters are escaped.
  void BeginTask(const std::string& name);
  /// Shows a step of the task, such as a tool, and starts its clock. Empty: between two steps.
  void BeginStep(const std::string& name);
  /// Leaves the terminal to others until the next task or step begins.
  void Hide();

 private:
  using Clock = std::chrono::steady_clock;

  void Draw();
  void Clear();
  /// Keeps the times current; runs on `ticker` until the line ends.
  void RedrawEveryTick();

  std::ostream& out;
  const unsigned width;
  const Clock::time_point begin = Clock::now();

  std::mutex mutex;  ///< guards the terminal and the members below
  std::condition_variable wake;
  std::string task;
  std::string step;
  Clock::time_point stepBegin = begin;
  bool drawn = false;  ///< on the terminal now
  bool hidden = true;  ///< until a task or step begins
  bool ending = false;
  std::thread ticker;
};

}  // namespace host
