#include "host/collect/collection_listener.h"

#include <algorithm>

namespace host {

void CollectionListeners::Begin() {
  // By number: the list may grow meanwhile.
  for (std::size_t i = 0; i < listeners.size(); ++i) listeners[i]->Begin();
}

void CollectionListeners::Plan(std::size_t modules) {
  for (CollectionListener* listener : listeners) listener->Plan(modules);
}

RepositoryObserver* CollectionListeners::Calls() {
  for (CollectionListener* listener : listeners) {
    if (RepositoryObserver* calls = listener->Calls()) return calls;
  }
  return nullptr;
}

bool CollectionListeners::WantsLog() const {
  return std::any_of(listeners.begin(), listeners.end(),
                     [](const CollectionListener* listener) { return listener->WantsLog(); });
}

bool CollectionListeners::WantsEnd() {
  return std::any_of(listeners.begin(), listeners.end(),
                     [](CollectionListener* listener) { return listener->WantsEnd(); });
}

void CollectionListeners::Module(const std::string& name, const std::string& description) {
  for (CollectionListener* listener : listeners) listener->Module(name, description);
}

void CollectionListeners::Layout(const std::string& table) {
  for (CollectionListener* listener : listeners) listener->Layout(table);
}

void CollectionListeners::Enumerate(const std::string& module, const std::string& table) {
  for (CollectionListener* listener : listeners) listener->Enumerate(module, table);
}

void CollectionListeners::Log(const LogLine& line) {
  for (CollectionListener* listener : listeners) listener->Log(line);
}

void CollectionListeners::OnProcess(const std::string& application, const std::string& commandLine,
                                    bool inheritHandles, bool pipe) {
  for (CollectionListener* listener : listeners) {
    listener->OnProcess(application, commandLine, inheritHandles, pipe);
  }
}

void CollectionListeners::OnAnswer(const ToolAnswer& answer) {
  for (CollectionListener* listener : listeners) listener->OnAnswer(answer);
}

void CollectionListeners::OnProcessEnd(std::uint32_t exitCode) {
  for (CollectionListener* listener : listeners) listener->OnProcessEnd(exitCode);
}

void CollectionListeners::OnToolEnded(unsigned seconds) {
  for (CollectionListener* listener : listeners) listener->OnToolEnded(seconds);
}

void CollectionListeners::OnToolRefused(unsigned seconds) {
  for (CollectionListener* listener : listeners) listener->OnToolRefused(seconds);
}

void CollectionListeners::OnToolOutOfMemory(unsigned mebibytes) {
  for (CollectionListener* listener : listeners) listener->OnToolOutOfMemory(mebibytes);
}

void CollectionListeners::OnNoLogin(const std::string& why) {
  for (CollectionListener* listener : listeners) listener->OnNoLogin(why);
}

void CollectionListeners::OnRefused() {
  for (CollectionListener* listener : listeners) listener->OnRefused();
}

void CollectionListeners::OnSystem(const std::string& command) {
  for (CollectionListener* listener : listeners) listener->OnSystem(command);
}

void CollectionListeners::OnOpen(const std::string& path, const std::string& mode) {
  for (CollectionListener* listener : listeners) listener->OnOpen(path, mode);
}

void CollectionListeners::OnConsole(std::string_view text) {
  for (CollectionListener* listener : listeners) listener->OnConsole(text);
}

void CollectionListeners::OnToolConsole(std::string_view text) {
  for (CollectionListener* listener : listeners) listener->OnToolConsole(text);
}

}  // namespace host
