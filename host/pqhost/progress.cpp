#include "host/pqhost/progress.h"

#include <fmt/format.h>

#include "host/pqhost/command_text.h"
#include "host/pqhost/screen_text.h"
#include "host/pqhost/text.h"

namespace host {
namespace {

constexpr char kWipe[] = "\r\x1b[K";
constexpr auto kTick = std::chrono::milliseconds(500);

std::string Seconds(std::chrono::steady_clock::duration time) {
  const double seconds = std::chrono::duration<double>(time).count();
  return seconds < 60 ? fmt::format("{:.1f} s", seconds)
                      : fmt::format("{}:{:02} min", static_cast<int>(seconds) / 60,
                                    static_cast<int>(seconds) % 60);
}

/// Names of modules and tools are ASCII; whatever else comes must not reach the terminal raw.
std::string Name(const std::string& bytes) {
  return EscapeControls(TextDecoder(kUtf8CodePage)(bytes));
}

}  // namespace

ProgressLine::ProgressLine(std::ostream& out, unsigned width)
    : out(out), width(width), ticker([this] { Tick(); }) {}

ProgressLine::~ProgressLine() {
  {
    const std::lock_guard lock(mutex);
    ending = true;
    Wipe();
  }
  wake.notify_one();
  ticker.join();
}

void ProgressLine::Module(const std::string& name, const std::string& /*description*/) {
  const std::lock_guard lock(mutex);
  module = Name(name);
  tool.clear();
  wanted = true;
  Draw();
}

void ProgressLine::OnProcess(const std::string& /*application*/, const std::string& commandLine,
                             bool /*inheritHandles*/, bool /*pipe*/) {
  Show(Name(FindTool(commandLine)));
}

void ProgressLine::OnProcessEnd(std::uint32_t /*exitCode*/) { Show(""); }

void ProgressLine::OnSystem(const std::string& command) { Show(Name(FindTool(command))); }

// Someone else writes to the terminal, and may wait there for an answer: out of the way until the
// next tool.
void ProgressLine::OnConsole(std::string_view /*text*/) { Hide(); }
void ProgressLine::OnToolConsole(std::string_view /*text*/) { Hide(); }

void ProgressLine::Show(const std::string& toolNow) {
  const std::lock_guard lock(mutex);
  tool = toolNow;
  toolBegin = Clock::now();
  wanted = true;
  Draw();
}

void ProgressLine::Hide() {
  const std::lock_guard lock(mutex);
  wanted = false;
  Wipe();
}

void ProgressLine::Draw() {
  if (!wanted || ending) return;
  const Clock::time_point now = Clock::now();
  std::string line = fmt::format("{}  {}", Seconds(now - begin), module);
  if (!tool.empty()) line += fmt::format(": {} ({})", tool, Seconds(now - toolBegin));
  // The last column stays free: some terminals wrap as soon as it is written.
  out << kWipe << CutText(line, width > 1 ? width - 1 : 1) << std::flush;
  shown = true;
}

void ProgressLine::Wipe() {
  if (shown) out << kWipe << std::flush;
  shown = false;
}

void ProgressLine::Tick() {
  std::unique_lock lock(mutex);
  while (!wake.wait_for(lock, kTick, [this] { return ending; })) Draw();
}

}  // namespace host
