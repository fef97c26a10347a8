#include "host/program/progress.h"

#include <fmt/format.h>

#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr char kClearLine[] = "\r\x1b[K";
constexpr auto kTick = std::chrono::milliseconds(500);

std::string FormatSeconds(std::chrono::steady_clock::duration time) {
  const double seconds = std::chrono::duration<double>(time).count();
  return seconds < 60 ? fmt::format("{:.1f} s", seconds)
                      : fmt::format("{}:{:02} min", static_cast<int>(seconds) / 60,
                                    static_cast<int>(seconds) % 60);
}

}  // namespace

ProgressLine::ProgressLine(std::ostream& out, unsigned width)
    : out(out), width(width), ticker([this] { RedrawEveryTick(); }) {}

ProgressLine::~ProgressLine() {
  {
    const std::lock_guard lock(mutex);
    ending = true;
    Clear();
  }
  wake.notify_one();
  ticker.join();
}

void ProgressLine::BeginTask(const std::string& name) {
  const std::lock_guard lock(mutex);
  task = EscapeControls(name);
  step.clear();
  hidden = false;
  Draw();
}

void ProgressLine::BeginStep(const std::string& name) {
  const std::lock_guard lock(mutex);
  step = EscapeControls(name);
  stepBegin = Clock::now();
  hidden = false;
  Draw();
}

void ProgressLine::Hide() {
  const std::lock_guard lock(mutex);
  hidden = true;
  Clear();
}

void ProgressLine::Draw() {
  if (hidden || ending) return;
  const Clock::time_point now = Clock::now();
  std::string line = fmt::format("{}  {}", FormatSeconds(now - begin), task);
  if (!step.empty()) line += fmt::format(": {} ({})", step, FormatSeconds(now - stepBegin));
  // Some terminals wrap as soon as the last column is written.
  out << kClearLine << CutText(line, width > 1 ? width - 1 : 1) << std::flush;
  drawn = true;
}

void ProgressLine::Clear() {
  if (drawn) out << kClearLine << std::flush;
  drawn = false;
}

void ProgressLine::RedrawEveryTick() {
  std::unique_lock lock(mutex);
  while (!wake.wait_for(lock, kTick, [this] { return ending; })) Draw();
}

}  // namespace host
