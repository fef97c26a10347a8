// Shows on a terminal which module of a collection runs which tool.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>

#include "host/collect/collection_listener.h"
#include "host/program/progress.h"

namespace host {

class CollectionProgress final : public CollectionListener {
 public:
  /// As ProgressLine, which is hidden as soon as a module or a tool writes to the terminal.
  CollectionProgress(std::ostream& out, unsigned width) : line(out, width) {}

  void Plan(std::size_t modules) override { moduleCount = modules; }
  void Module(const std::string& name, const std::string& description) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnSystem(const std::string& command) override;
  void OnConsole(std::string_view text) override;
  void OnToolConsole(std::string_view text) override;

 private:
  ProgressLine line;
  std::size_t moduleCount = 0;  ///< 0: not known
  std::size_t moduleNumber = 0;
};

}  // namespace host
