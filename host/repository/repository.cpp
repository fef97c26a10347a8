#include "frame/halyard/repository.h"

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "host/repository/observer.h"
#include "host/repository/store.h"

namespace host {
namespace {

thread_local RepositoryObserverInUse* observerInUse = nullptr;

/// Tells the observer, if there is one.
template <typename... Parameters, typename... Arguments>
void Tell(void (RepositoryObserver::*event)(Parameters...), Arguments&&... arguments) {
  if (observerInUse == nullptr) return;
  (observerInUse->Observer().*event)(std::forward<Arguments>(arguments)...);
}

}  // namespace

RepositoryObserverInUse::RepositoryObserverInUse(RepositoryObserver& observer)
    : observer(observer), before(std::exchange(observerInUse, this)) {}

RepositoryObserverInUse::~RepositoryObserverInUse() { observerInUse = before; }

}  // namespace host

namespace halyard::repository {

RModule::RModule() = default;
RModule::~RModule() = default;
void RModule::DelDisuseResources() {}

/// What rows have in common, each kept once.
using Shapes = std::set<host::RowShape>;

struct InstanceState {
  std::uint64_t id;
  host::RowShape shape;
  /// The shape as the repository that took the instance last keeps it; null once it has changed.
  mutable const host::RowShape* keptShape = nullptr;
  /// The shapes of that repository, which tell it from every other one.
  mutable std::shared_ptr<const Shapes> keptIn = nullptr;
  std::vector<std::string> values = {};

  /// Sets a value, in its old place when the key is there already. It is written over the one of
  /// the row before: to let go of that and take a new one for every row would leave a gap in the
  /// heap each time, which some heaps search through for every row that follows.
  void Set(const std::string& key, const std::string& label, host::CellKind kind, bool flag,
           std::string_view value) {
    const auto known = std::find_if(shape.columns.begin(), shape.columns.end(),
                                    [&](const host::Column& column) { return column.key == key; });
    const auto at = static_cast<std::size_t>(known - shape.columns.begin());
    if (known == shape.columns.end()) {
      keptShape = nullptr;
      shape.columns.push_back({key, label, kind, flag});
      values.emplace_back(value);
      return;
    }
    if (known->label != label || known->kind != kind || known->flag != flag) {
      keptShape = nullptr;
      *known = {key, label, kind, flag};
    }
    values[at] = value;
  }
};

struct RepositoryState {
  std::map<std::string, host::Table> tables;
  std::map<std::string, std::set<std::string>> columnKeys;  ///< of each table
  std::shared_ptr<Shapes> shapes = std::make_shared<Shapes>();
  std::unordered_map<const host::RowShape*, host::Table*> tableOf;
  const host::RowShape* lastShape = nullptr;  ///< mostly that of the next row too

  static RepositoryState& Of(const RRepository& repository) { return *repository.state; }

  void Add(const InstanceState& instance) {
    if (instance.keptShape == nullptr || instance.keptIn != shapes) {
      instance.keptShape = &KeepShape(instance.shape);
      instance.keptIn = shapes;
    }
    AddRow(*instance.keptShape, instance.values);
  }

  void AddRow(const host::RowShape& kept, const std::vector<std::string>& values) {
    tableOf[&kept]->rows.Add(kept, values);
  }

  const host::RowShape& KeepShape(const host::RowShape& wanted) {
    if (lastShape != nullptr && *lastShape == wanted) return *lastShape;
    const auto [shape, isNew] = shapes->insert(wanted);
    host::Table& table = tables[shape->className];
    if (isNew) AddColumns(table, *shape);
    tableOf[&*shape] = &table;
    lastShape = &*shape;
    return *shape;
  }

  void AddColumns(host::Table& table, const host::RowShape& shape) {
    std::set<std::string>& known = columnKeys[shape.className];
    for (const host::Column& column : shape.columns) {
      if (known.insert(column.key).second) table.columns.push_back(column);
    }
  }
};

RInstance::RInstance(const std::string& className, const std::string& key, int number)
    : state(new InstanceState{
          host::observerInUse == nullptr ? 0 : host::observerInUse->CountInstance(),
          {className, key, number, {}, {}}}) {
  host::Tell(&host::RepositoryObserver::OnInstance, state->id, className, key, number);
}

RInstance::~RInstance() { host::Tell(&host::RepositoryObserver::OnRelease, state->id); }

void RInstance::AddProperty(const std::string& key, const std::string& label,
                            const std::string& value, bool flag) {
  state->Set(key, label, host::CellKind::kText, flag, value);
  host::Tell<std::uint64_t, const std::string&, const std::string&, const std::string&, bool>(
      &host::RepositoryObserver::OnProperty, state->id, key, label, value, flag);
}

void RInstance::AddProperty(const std::string& key, const std::string& label, int value,
                            bool flag) {
  state->Set(key, label, host::CellKind::kInteger, flag, std::to_string(value));
  host::Tell<std::uint64_t, const std::string&, const std::string&, int, bool>(
      &host::RepositoryObserver::OnProperty, state->id, key, label, value, flag);
}

void RInstance::AddPropertyAttr(const std::string& propertyKey, const std::string& name,
                                const std::string& value) {
  state->keptShape = nullptr;
  state->shape.attributes.push_back({propertyKey, name, value});
  host::Tell(&host::RepositoryObserver::OnAttribute, state->id, propertyKey, name, value);
}

void RInstance::AddToRepository(RRepository& repository) const {
  repository.state->Add(*state);
  host::Tell(&host::RepositoryObserver::OnAdd, state->id);
}

RRepository::RRepository(ConnectMode /*mode*/) : state(std::make_unique<RepositoryState>()) {}
RRepository::~RRepository() = default;

void RInstancesWrapper::SetColumnHeaders(const std::vector<std::string>& names, unsigned first,
                                         unsigned second) {
  headers = names;
  byRow = false;
  columnCount = static_cast<std::uint32_t>(names.size());
  numbers = {first, second};
  host::Tell(&host::RepositoryObserver::OnColumnHeaders, *this, names, first, second);
}

void RInstancesWrapper::SetRowHeaders(const std::vector<std::string>& names,
                                      const std::vector<unsigned>& widths, bool flag) {
  headers = names;
  byRow = true;
  rowFlag = flag;
  columnCount = static_cast<std::uint32_t>(widths.size());
  numbers.assign(widths.begin(), widths.end());
  host::Tell(&host::RepositoryObserver::OnRowHeaders, *this, names, widths, flag);
}

}  // namespace halyard::repository

namespace host {

const std::map<std::string, Table>& TablesOf(const halyard::repository::RRepository& repository) {
  return halyard::repository::RepositoryState::Of(repository).tables;
}

void AddRow(halyard::repository::RRepository& repository, const RowShape& shape,
            const std::vector<std::string>& values) {
  auto& state = halyard::repository::RepositoryState::Of(repository);
  state.AddRow(state.KeepShape(shape), values);
}

}  // namespace host
