#include "tests/support/event_list.h"

#include <string_view>
#include <utility>

#include "frame/add_modules.h"
#include "frame/sentences.h"

namespace test {
namespace {

/// The texts that an event is easier to read without, or in another form.
constexpr std::pair<std::string_view, std::string_view> kSpellings[] = {
    {R"(C:\\Halyard\\logs\\)", ""},
    {R"(C:\Halyard\logs\)", ""},
    {R"(C:\Halyard\)", ""},
    {"\r", "\\r"},
    {"\n", "\\n"},
    {"\xfc", "\\xfc"},
};

std::string Spell(std::string event) {
  for (const auto& [from, to] : kSpellings) {
    for (std::size_t at = 0; (at = event.find(from, at)) != std::string::npos; at += to.size()) {
      event.replace(at, from.size(), to);
    }
  }
  return event;
}

}  // namespace

EventList::EventList(const host::Recording& recording)
    : recorded(recording),
      logFolder(recording.logFolder, [this] { Note("ask log folder"); }),
      logSink([this](const host::LogLine& line) {
        const std::string_view prefix = pq::kLogPrefix;
        const bool hasPrefix = line.text.starts_with(prefix);
        Note("log " + std::to_string(line.level) + " \"" +
             line.text.substr(hasPrefix ? prefix.size() : 0) + "\"");
      }) {
  machine.answering = &recorded;
  AddModules(modules);
  for (const auto& module : modules) module->RegisterTables();
}

void EventList::Enumerate(const std::string& name, const std::string& table) {
  for (const auto& module : modules) {
    if (module->GetName() == name) module->Tables().at(table).enumHandler(repository);
  }
}

std::string EventList::Text() const {
  std::string text;
  for (const std::string& event : machine.calls) text += Spell(event) + "\n";
  return text;
}

void EventList::OnInstance(std::uint64_t /*id*/, const std::string& className,
                           const std::string& /*key*/, int /*number*/) {
  classNames.push_back(className);
  Note("build " + className);
}

void EventList::OnProperty(std::uint64_t id, const std::string& /*key*/,
                           const std::string& /*label*/, const std::string& /*value*/,
                           bool /*flag*/) {
  NoteSet(id);
}

void EventList::OnProperty(std::uint64_t id, const std::string& /*key*/,
                           const std::string& /*label*/, int /*value*/, bool /*flag*/) {
  NoteSet(id);
}

void EventList::OnAttribute(std::uint64_t id, const std::string& /*propertyKey*/,
                            const std::string& /*name*/, const std::string& /*value*/) {
  NoteSet(id);
}

void EventList::OnAdd(std::uint64_t id) { Note("add " + classNames[id - 1]); }
void EventList::OnRelease(std::uint64_t id) { Note("release " + classNames[id - 1]); }

void EventList::NoteSet(std::uint64_t id) {
  const std::string event = "set " + classNames[id - 1];
  if (machine.calls.back() != event) Note(event);
}

}  // namespace test
