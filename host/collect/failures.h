// Finds out what could not be collected from the events of a collection.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frame/description.h"
#include "host/collect/collection_listener.h"
#include "host/collect/start_watch.h"

namespace host {

/// One thing that could not be collected. Texts are bytes in the machine's code page.
struct Failure {
  std::string module;  ///< several, joined by " and ", when one program answers for all of them
  std::string tool;    ///< file name of the program concerned; empty when none was started yet
  std::string text;    ///< the module's own words without the log's prefix, or the host's
  std::vector<std::string> tables = {};  ///< classes of the tables concerned, if they are known
};

/// " after N s", where it is known after how many seconds a host ended a tool.
std::string DescribeSeconds(unsigned seconds);

/// The text of a log line without the log's prefix.
std::string_view RemoveLogPrefix(std::string_view text);

/// The sentence by which a module reports a failed step in `text`, a log line without the log's
/// prefix; null when it reports none.
const pq::FailureSentence* FindFailureSentence(std::string_view text);

/// The presence test that the command line runs; null when it runs none.
const pq::PresenceTest* FindPresenceTest(std::string_view commandLine);

/// Whether the log line says that something could not be collected. A missing tool or absent
/// controller is not a failure.
bool ReportsFailure(const LogLine& line);

/// Whether a tool printed more into its pipe than the modules keep.
bool ExceedsPipe(const ToolAnswer& answer);

/// Gathers the failures of a collection.
class FailureList final : public CollectionListener {
 public:
  /// Whether the machine has the programs of a command line.
  using ProgramTest = std::function<bool(const std::string& commandLine)>;

  /// From now on a program that answers for the presence of something, and is missing itself, is a
  /// failure: the interpreter then ends as a program that gave an answer does.
  void FindMissingPrograms(ProgramTest test) { isProgramThere = std::move(test); }

  std::vector<Failure> Failures() const;

  bool WantsLog() const override { return true; }
  void Module(const std::string& name, const std::string& description) override;
  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override;
  void OnAnswer(const ToolAnswer& answer) override;
  void OnProcessEnd(std::uint32_t exitCode) override;
  void OnSystem(const std::string& command) override;
  void OnToolEnded(unsigned seconds) override;
  void OnToolRefused(unsigned seconds) override;
  void OnToolOutOfMemory(unsigned mebibytes) override;
  void OnNoLogin(const std::string& why) override;
  void OnRefused() override { interrupted = true; }
  void Log(const LogLine& line) override;

 private:
  void AddOnce(Failure failure);
  void AddMissing(const pq::PresenceTest& presence);

  ProgramTest isProgramThere;
  std::string module;
  std::string tool;
  StartWatch starts;
  bool readThroughPipe = false;
  std::vector<Failure> failures;
  std::set<std::string> answering;  ///< tools that answered for the presence of something
  // Modules complain of the host's refusals: of all from now on, of the last start.
  bool interrupted = false;
  bool toolRefused = false;
};

}  // namespace host
