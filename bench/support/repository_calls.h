// What a collection asks of the repository, to be asked again without the collection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/repository/observer.h"

namespace bench {

/// Writes down every call that changes a repository.
class RepositoryCalls final : public host::RepositoryObserver {
 public:
  /// Makes the same calls with the same texts, on `repository`.
  void Replay(halyard::repository::RRepository& repository) const;

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

 private:
  enum class Kind : std::uint8_t { kInstance, kText, kInteger, kAttribute, kAdd, kRelease };
  struct Call {
    Kind kind;
    std::uint32_t instance;  ///< from 0
    std::uint32_t names;     ///< index into `names`
    int number;
    std::size_t length;  ///< of the value; the values stand one behind the other
  };
  struct Names {
    std::string first;
    std::string second;
    bool operator==(const Names&) const = default;
  };

  void Write(Kind kind, std::uint64_t id, const Names& callNames = {}, int number = 0,
             const std::string& value = {});

  std::vector<Call> calls;
  std::vector<Names> names;
  std::string values;
};

}  // namespace bench
