#include "host/pqhost/gather.h"

#include <chrono>
#include <optional>

#include "host/answers/columns_fit.h"
#include "host/pqhost/collection_progress.h"
#include "host/pqhost/tool_chatter.h"
#include "host/program/deadline.h"

namespace host {
namespace {

/// Opens the command's outputs, and shows progress, as soon as the collection begins.
class Attendant final : public CollectionListener {
 public:
  Attendant(const Console& console, CollectionListeners& listeners,
            const std::function<void(CollectionListeners&)>& beforeRun, const SourceOptions& from)
      : console(console), listeners(listeners), beforeRun(beforeRun), isLive(!from.replay) {
    if (!from.seconds) return;
    end = std::chrono::steady_clock::now() + std::chrono::seconds(*from.seconds);
  }

  void Begin() override {
    beforeRun(listeners);
    // A recording has it beside the answers.
    if (isLive) listeners.Add(chatter);
    if (!console.errorIsTerminal) return;
    progress.emplace(console.error, console.width);
    listeners.Add(*progress);
  }

  bool WantsEnd() override {
    isOverdue = isOverdue || (end && std::chrono::steady_clock::now() >= *end);
    return isOverdue || IsInterruptionRequested();
  }

  /// After the collection: what the tools of this machine said beside their output, on a terminal
  /// that is no longer in use.
  void TellChatter(std::uint32_t codePage) {
    progress.reset();
    chatter.Tell(codePage, console.error);
  }

  /// Whether the time was over before the collection.
  bool IsOverdue() const { return isOverdue; }

 private:
  const Console& console;
  CollectionListeners& listeners;
  const std::function<void(CollectionListeners&)>& beforeRun;
  bool isLive;
  ToolChatter chatter;
  std::optional<CollectionProgress> progress;
  std::optional<std::chrono::steady_clock::time_point> end;
  bool isOverdue = false;
};

}  // namespace

Gathered Gather(const SourceOptions& from, const Selection& selection, const Console& console,
                KeepLog keepLog, const std::function<void(CollectionListeners&)>& beforeRun) {
  std::unique_ptr<CommandSource> source = OpenSource(from, console);
  CollectionListeners listeners;
  Attendant attendant(console, listeners, beforeRun, from);
  listeners.Add(attendant);
  auto interruption = std::make_unique<InterruptionWatch>();
  Collection collection = Collect(source->Get(), selection, listeners, keepLog);
  attendant.TellChatter(collection.machine.codePage);
  source->EndCollection();
  NoteUnfitColumns(collection);
  if (attendant.IsOverdue()) {
    collection.problems.push_back("the collection " + DescribeOverdue(*from.seconds));
  }
  return {std::move(interruption), std::move(source), std::move(collection)};
}

}  // namespace host
