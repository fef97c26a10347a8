// All that a module does on a recorded machine, in its log and in its repository, in one list.
#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "frame/halyard/repository.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "host/recorded/recording.h"
#include "host/repository/observer.h"
#include "tests/support/fake_platform.h"

namespace test {

class EventList final : private host::RepositoryObserver {
 public:
  explicit EventList(const host::Recording& recording);

  /// Has the module `name` fill `repository` with the table `table`.
  void Enumerate(const std::string& name, const std::string& table);

  /// One event a line, in order: the calls that FakePlatform lists; "ask log folder"; `log LEVEL
  /// "TEXT"`, without its prefix; and for the rows of a table "build", "set" (however many
  /// properties and attributes in turn), "add" and "release CLASS". Line ends in an event are
  /// spelled \r and \n, and the host's folders are left out.
  std::string Text() const;

 private:
  void OnInstance(std::uint64_t id, const std::string& className, const std::string& key,
                  int number) override;
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                  const std::string& value, bool flag) override;
  void OnProperty(std::uint64_t id, const std::string& key, const std::string& label, int value,
                  bool flag) override;
  void OnAttribute(std::uint64_t id, const std::string& propertyKey, const std::string& name,
                   const std::string& value) override;
  void OnAdd(std::uint64_t id) override;
  void OnRelease(std::uint64_t id) override;

  void Note(const std::string& event) { machine.calls.push_back(event); }
  void NoteSet(std::uint64_t id);

  std::vector<std::string> classNames;  ///< of the instances, in order of construction
  std::vector<boost::shared_ptr<halyard::repository::RModule>> modules;
  halyard::repository::RRepository repository;
  host::RecordedMachine recorded;
  FakePlatform machine;
  pq::MachineInUse machineInUse{machine};
  host::LogFolderInUse logFolder;
  host::LogSinkInUse logSink;
  host::RepositoryObserverInUse observer{*this};
};

}  // namespace test
