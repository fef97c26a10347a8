// The options of one command: their names and help texts, and where their values go.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/program/destination.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace host {

/// The kind of value that an option takes, as far as a shell can complete it.
enum class OptionValue {
  kNone,
  kAny,
  kFolder,
  kFile,
  kRecording,  ///< a folder or a file
  kDatabase,
  kModule,
  kTable,
  kCommand,
  kChoice
};

struct OptionDescription {
  std::string name;  ///< "--format"; empty: the words that belong to no option
  OptionValue value = OptionValue::kNone;
  std::vector<std::string> choices;  ///< of kChoice
};

/// Each Add... defines an option, in the order of the help. Names and help texts are copied; the
/// values are filled in while the command line is read, and have to outlive that.
class OptionSet {
 public:
  /// `app` has to outlive this.
  explicit OptionSet(CLI::App& app) : app(app) {}
  OptionSet(const OptionSet&) = delete;
  OptionSet& operator=(const OptionSet&) = delete;

  void AddFlag(const char* name, bool& flag, const char* help);
  /// kModule or kTable, may be repeated. Whether there is one of that name is not checked.
  void AddNames(const char* name, OptionValue value, std::vector<std::string>& names,
                const char* help);
  /// kFolder, kFile or kRecording.
  void AddPath(const char* name, OptionValue value, std::optional<std::filesystem::path>& path,
               const char* help);
  /// The same, whose value may be left away: `path` is empty then.
  void AddPathOrNone(const char* name, OptionValue value,
                     std::optional<std::filesystem::path>& path, const char* help);
  /// The same; may be repeated.
  void AddPaths(const char* name, OptionValue value, std::vector<std::filesystem::path>& paths,
                const char* help);
  void AddDestination(const char* name, Destination& destination, const std::string& help);
  void AddDestination(const char* name, std::optional<Destination>& destination, const char* help);
  /// One of `choices`; `choice` keeps its value unless given.
  void AddChoice(const char* name, std::vector<std::string> choices, std::string& choice,
                 const std::string& help);
  /// The same; given without a value, it is the first of them.
  void AddOptionalChoice(const char* name, std::vector<std::string> choices,
                         std::optional<std::string>& choice, const std::string& help);
  /// Any text, called `form` in the help; may be repeated.
  void AddTexts(const char* name, const char* form, std::vector<std::string>& texts,
                const char* help);
  /// A number from one to `most`, called `form` in the help.
  void AddCount(const char* name, const char* form, std::optional<unsigned>& count, unsigned most,
                const char* help);
  /// The same, of seconds.
  void AddSeconds(const char* name, std::optional<unsigned>& seconds, unsigned most,
                  const char* help);
  /// NAME=NUMBER with one of `names`, and a number from one; may be repeated. `set` is told of
  /// each.
  void AddNumbers(const char* name, std::vector<std::string> names,
                  std::function<void(const std::string& name, std::uint64_t number)> set,
                  const char* help);
  void AddMebibytes(const char* name, std::optional<unsigned>& mebibytes, unsigned most,
                    const char* help);
  /// The words that belong to no option, at most `most`. `name` and `form` are for the help.
  void AddArguments(const char* name, const char* form, OptionValue value, int most,
                    std::vector<std::string>& words, const char* help);

  bool IsGiven(const char* name) const;

  /// To be called once the command line has been read: throws UsageError for a value that cannot
  /// be meant, such as an empty path.
  void CheckValues() const;

  /// The options in the order of the help, without --help.
  std::vector<OptionDescription> Describe() const;

 private:
  struct Row {
    CLI::Option* option;
    OptionDescription description;
    const char* whenEmpty;  ///< the remedy for an empty value; null: it may be empty
  };

  void AddPathOption(const char* name, OptionValue value,
                     std::function<void(std::filesystem::path)> set, const std::string& help,
                     const char* whenEmpty);

  CLI::App& app;
  std::vector<Row> rows;
};

}  // namespace host
