// What the five modules share: table registration, collect-once enumeration, log lines, the layout
// without names and widths.
#pragma once

#include <boost/bind/bind.hpp>
#include <string>

#include "frame/halyard/repository.h"
#include "frame/logkit/log.h"

namespace pq {

using halyard::repository::RInstance;
using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;
using halyard::repository::RRepository;

/// Every instance is built with this number, and every property with this flag.
inline constexpr int kInstanceNumber = -1;
inline constexpr bool kPropertyFlag = false;

/// A log level, with the source line on which it was written down.
struct LogLevel {
  LogLevel(unsigned level, int line = __builtin_LINE()) : level(level), line(line) {}
  unsigned level;
  int line;
};

inline constexpr unsigned kError = 1;
inline constexpr unsigned kProgress = 3;
inline constexpr unsigned kDetail = 4;

/// The log of one module: kLog(kProgress, "the exepath:", folder) writes one line.
class ModuleLog {
 public:
  /// `file` is the module's source file as the host's log names it, such as "pqmodules/rbmcinfo".
  constexpr explicit ModuleLog(const char* file) : file(file) {}

  template <typename... Parts>
  void operator()(LogLevel at, const Parts&... parts) const {
    LogKit::Log line(at.level, file, at.line);
    ((line.Stream() << "[repo] ") << ... << parts);
  }

 private:
  const char* file;
};

/// Base of the five modules: collects at most once per object.
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

  /// Logs "Enter " + `name`, runs `collect` unless a collection ran before, logs "Exit " + `name`.
  template <typename Collect>
  void CollectOnce(const ModuleLog& log, const char* name, const Collect& collect) {
    log(kProgress, "Enter ", name);
    if (!collected) collect();
    collected = true;
    log(kProgress, "Exit ", name);
  }

  bool collected;
};

}  // namespace pq
