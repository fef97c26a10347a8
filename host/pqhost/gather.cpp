#include "host/pqhost/gather.h"

#include <optional>

#include "host/pqhost/collection_progress.h"

namespace host {
namespace {

/// Opens the command's outputs, and shows progress, as soon as the collection begins.
class Attendant final : public CollectionListener {
 public:
  Attendant(const Console& console, CollectionListeners& listeners,
            const std::function<void(CollectionListeners&)>& beforeRun)
      : console(console), listeners(listeners), beforeRun(beforeRun) {}

  void Begin() override {
    beforeRun(listeners);
    if (!console.errorIsTerminal) return;
    progress.emplace(console.error, console.width);
    listeners.Add(*progress);
  }

  bool WantsEnd() override { return IsInterruptionRequested(); }

 private:
  const Console& console;
  CollectionListeners& listeners;
  const std::function<void(CollectionListeners&)>& beforeRun;
  std::optional<CollectionProgress> progress;
};

}  // namespace

Gathered Gather(const SourceOptions& from, const Selection& selection, const Console& console,
                KeepLog keepLog, const std::function<void(CollectionListeners&)>& beforeRun) {
  std::unique_ptr<CommandSource> source = OpenSource(from, console);
  CollectionListeners listeners;
  Attendant attendant(console, listeners, beforeRun);
  listeners.Add(attendant);
  auto interruption = std::make_unique<InterruptionWatch>();
  Collection collection = Collect(source->Get(), selection, listeners, keepLog);
  return {std::move(interruption), std::move(source), std::move(collection)};
}

}  // namespace host
