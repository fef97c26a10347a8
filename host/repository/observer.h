// How a host sees every call that modules make on the repository library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"

namespace host {

/// Called on the collecting thread, in the order of the calls. `id` counts the instances from 1, in
/// order of construction, since the observer is in use. Texts are bytes in the machine's code page.
class RepositoryObserver {
 public:
  virtual ~RepositoryObserver() = default;
  virtual void OnInstance(std::uint64_t /*id*/, const std::string& /*className*/,
                          const std::string& /*key*/, int /*number*/) {}
  virtual void OnProperty(std::uint64_t /*id*/, const std::string& /*key*/,
                          const std::string& /*label*/, const std::string& /*value*/,
                          bool /*flag*/) {}
  virtual void OnProperty(std::uint64_t /*id*/, const std::string& /*key*/,
                          const std::string& /*label*/, int /*value*/, bool /*flag*/) {}
  virtual void OnAttribute(std::uint64_t /*id*/, const std::string& /*propertyKey*/,
                           const std::string& /*name*/, const std::string& /*value*/) {}
  /// The instance was handed to the repository in its present state.
  virtual void OnAdd(std::uint64_t /*id*/) {}
  /// The module destroyed its copy.
  virtual void OnRelease(std::uint64_t /*id*/) {}
  virtual void OnRowHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                            const std::vector<std::string>& /*names*/,
                            const std::vector<unsigned>& /*widths*/, bool /*flag*/) {}
  virtual void OnColumnHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                               const std::vector<std::string>& /*headers*/, unsigned /*first*/,
                               unsigned /*second*/) {}
};

/// Has `observer` see all calls of the calling thread until destroyed, on that thread; then the one
/// from before sees them again. May be nested.
class REPOSITORY_API RepositoryObserverInUse {
 public:
  /// `observer` has to outlive this object.
  explicit RepositoryObserverInUse(RepositoryObserver& observer);
  RepositoryObserverInUse(const RepositoryObserverInUse&) = delete;
  RepositoryObserverInUse& operator=(const RepositoryObserverInUse&) = delete;
  ~RepositoryObserverInUse();

  RepositoryObserver& Observer() const { return observer; }
  /// The number of the next instance.
  std::uint64_t CountInstance() { return ++lastId; }

 private:
  RepositoryObserver& observer;
  std::uint64_t lastId = 0;
  RepositoryObserverInUse* before;
};

}  // namespace host
