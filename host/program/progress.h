// What a person at a terminal sees while a program works: one line that says what is running, and
// for how long.
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
  /// `out` is a terminal of `width` columns; the line is wiped off it in the end. Nothing else may
  /// write to it while the line is shown.
  ProgressLine(std::ostream& out, unsigned width);
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  ~ProgressLine();

  /// Names the task, such as a module; no step of it has begun. Texts are UTF-8, escaped here.
  void BeginTask(const std::string& name);
  /// Names a step of the task, such as a tool; its time counts from now. Empty: between two steps.
  void BeginStep(const std::string& name);
  /// Makes way for somebody else who writes to the terminal, until the next step begins.
  void Hide();

 private:
  using Clock = std::chrono::steady_clock;

  void Draw();
  void Wipe();
  void Tick();

  std::ostream& out;
  const unsigned width;
  const Clock::time_point begin = Clock::now();

  std::mutex mutex;  ///< guards all below, and the terminal
  std::condition_variable wake;
  std::string task;
  std::string step;
  Clock::time_point stepBegin = begin;
  bool shown = false;   ///< the line is on the terminal
  bool wanted = false;  ///< the line may be drawn
  bool ending = false;
  std::thread ticker;
};

}  // namespace host
