// Common ground of all modules: table registration, collect-once enumeration, log lines, the layout
// without names and widths.
#pragma once

#include <boost/bind/bind.hpp>
#include <boost/shared_ptr.hpp>
#include <string>
#include <type_traits>
#include <vector>

#include "frame/halyard/repository.h"
#include "frame/logkit/log.h"
#include "frame/sentences.h"

namespace pq {

using halyard::repository::RInstance;
using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;
using halyard::repository::RRepository;

/// Every instance is built with this number, and every property with this flag.
inline constexpr int kInstanceNumber = -1;
inline constexpr bool kPropertyFlag = false;

/// Words of the log that are data, with the source line on which they were written down: a record
/// carries that one, wherever it is made.
struct Sentence {
  constexpr Sentence(const char* text, int line = __builtin_LINE()) : text(text), line(line) {}
  constexpr operator const char*() const { return text; }
  const char* text;  ///< may be null, where a step has no such words
  int line;
};

/// The line of words that modules share: each record carries that of the module's call.
inline constexpr int kCallersLine = 0;

/// A log level, with the source line on which it was written down.
struct LogLevel {
  LogLevel(unsigned level, int line = __builtin_LINE()) : level(level), line(line) {}
  unsigned level;
  int line;
};

inline constexpr unsigned kError = 1;
inline constexpr unsigned kProgress = 3;
inline constexpr unsigned kDetail = 4;

/// The log of one module: kLog(kProgress, "the exepath:", folder) writes one line. Its record
/// carries the source line of the call, or of the sentence that it begins with.
class ModuleLog {
 public:
  /// `file` is the module's source file as the host's log names it, such as "pqmodules/rbmcinfo".
  constexpr explicit ModuleLog(const char* file) : file(file) {}

  template <typename... Parts>
  void operator()(LogLevel at, const Parts&... parts) const {
    LogKit::Log line(at.level, file, FindLine(at.line, parts...));
    ((line.Stream() << kLogPrefix) << ... << parts);
  }

 private:
  template <typename First, typename... Rest>
  static int FindLine(int callersLine, const First& first, const Rest&... /*rest*/) {
    if constexpr (std::is_same_v<First, Sentence>) {
      if (first.line != kCallersLine) return first.line;
    }
    return callersLine;
  }

  const char* file;
};

/// A module's log in the hands of code that modules share: its records carry the source line of the
/// module's call, where a parameter of this type is made from the module's log.
class CallerLog {
 public:
  CallerLog(const ModuleLog& log, int line = __builtin_LINE()) : log(log), line(line) {}

  template <typename... Parts>
  void operator()(unsigned level, const Parts&... parts) const {
    log(LogLevel(level, line), parts...);
  }

 private:
  const ModuleLog& log;
  int line;
};

/// Base of the modules: collects at most once per object.
class CollectionModule : public RModule {
 public:
  CollectionModule() : collected(false) {}

  /// Layout of a table with one instance per line, without names and widths.
  void FormatRowTable(RInstancesWrapper& table);

 protected:
  /// Registers the table `className` with the module's enumeration and the table's layout member.
  template <typename Module, typename LayoutOwner>
  void RegisterTable(const std::string& className, void (Module::*enumerate)(RRepository&),
                     void (LayoutOwner::*layout)(RInstancesWrapper&)) {
    auto* self = static_cast<Module*>(this);
    const boost::function<void(RRepository&)> enumHandler =
        boost::bind(enumerate, self, boost::placeholders::_1);
    const boost::function<void(RInstancesWrapper&)> layoutHandler =
        boost::bind(layout, self, boost::placeholders::_1);
    halyard::repository::TableHandlers& entry = tables[className];
    entry.enumHandler = enumHandler;
    entry.layoutHandler = layoutHandler;
  }

  /// Runs `collect` unless a collection ran before.
  template <typename Collect>
  void CollectOnce(const Collect& collect) {
    if (!collected) collect();
    collected = true;
  }

  bool collected;
};

using ModuleList = std::vector<boost::shared_ptr<RModule>>;

/// New objects of all modules, in the order in which the host gets them. The modules define it.
ModuleList CreateModules();

}  // namespace pq
