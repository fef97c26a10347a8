#include "bench/support/repository_calls.h"

#include <algorithm>
#include <memory>

namespace bench {

using halyard::repository::RInstance;
using halyard::repository::RRepository;

void RepositoryCalls::Write(Kind kind, std::uint64_t id, const Names& callNames, int number,
                            const std::string& value) {
  const auto known = std::find(names.begin(), names.end(), callNames);
  const auto index = static_cast<std::uint32_t>(known - names.begin());
  if (known == names.end()) names.push_back(callNames);
  calls.push_back({kind, static_cast<std::uint32_t>(id - 1), index, number, value.size()});
  values += value;
}

void RepositoryCalls::OnInstance(std::uint64_t id, const std::string& className,
                                 const std::string& key, int number) {
  Write(Kind::kInstance, id, {className, key}, number);
}
void RepositoryCalls::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                                 const std::string& value, bool /*flag*/) {
  Write(Kind::kText, id, {key, label}, 0, value);
}
void RepositoryCalls::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                                 int value, bool /*flag*/) {
  Write(Kind::kInteger, id, {key, label}, value);
}
void RepositoryCalls::OnAttribute(std::uint64_t id, const std::string& propertyKey,
                                  const std::string& name, const std::string& value) {
  Write(Kind::kAttribute, id, {propertyKey, name}, 0, value);
}
void RepositoryCalls::OnAdd(std::uint64_t id) { Write(Kind::kAdd, id); }
void RepositoryCalls::OnRelease(std::uint64_t id) { Write(Kind::kRelease, id); }

void RepositoryCalls::Replay(RRepository& repository) const {
  std::vector<std::unique_ptr<RInstance>> instances;
  std::string value;
  std::size_t at = 0;
  for (const Call& call : calls) {
    value.assign(values, at, call.length);
    at += call.length;
    const Names& callNames = names[call.names];
    if (call.kind == Kind::kInstance) {
      instances.push_back(
          std::make_unique<RInstance>(callNames.first, callNames.second, call.number));
      continue;
    }
    std::unique_ptr<RInstance>& instance = instances[call.instance];
    switch (call.kind) {
      case Kind::kInstance:
        break;
      case Kind::kText:
        instance->AddProperty(callNames.first, callNames.second, value, false);
        break;
      case Kind::kInteger:
        instance->AddProperty(callNames.first, callNames.second, call.number, false);
        break;
      case Kind::kAttribute:
        instance->AddPropertyAttr(callNames.first, callNames.second, value);
        break;
      case Kind::kAdd:
        instance->AddToRepository(repository);
        break;
      case Kind::kRelease:
        instance.reset();
        break;
    }
  }
}

}  // namespace bench
