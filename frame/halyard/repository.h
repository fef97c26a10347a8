// The host's repository as the plug-in sees it. The plug-in fills instances (records of a table
// class) and hands them to the repository; their further fate is the host's business.
//
// REPOSITORY_API and REPOSITORY_INLINE_API come from the build: the first marks the exports of
// repository.dll, which everyone else imports, the second those that the plug-in compiles and
// exports itself.
#pragma once

#include <boost/function.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace halyard::repository {

class RInstancesWrapper;
class RRepository;

/// How a repository is opened. The host knows further modes; modules never open one.
enum class ConnectMode : std::int32_t { kDefault = 0 };

/// A module's callbacks for one table class. The host calls `layoutHandler` to have the table's
/// layout set and `enumHandler` to have the table's instances put into the repository.
struct TableHandlers {
  boost::function<void(RRepository&)> enumHandler;
  boost::function<void(RInstancesWrapper&)> layoutHandler;
};

/// Table class name to its callbacks; the host walks it in the order of the names.
using TableRegistry = std::map<std::string, TableHandlers>;

/// Base of every collection module. The order of members and virtual operations is part of the
/// contract with the host: it reaches them by position.
class REPOSITORY_API RModule {
 protected:
  TableRegistry tables;

 public:
  RModule();
  RModule(const RModule&) = delete;
  RModule& operator=(const RModule&) = delete;
  virtual ~RModule();
  /// The module's identifier, such as "BMC_Info".
  virtual std::string GetName() = 0;
  /// The module's subject, in words.
  virtual std::string GetDescription() = 0;
  /// Does nothing here.
  virtual void DelDisuseResources();
  /// Fills `tables`. Called again, it overwrites the same entries.
  virtual void RegisterTables() = 0;

  /// The tables registered so far.
  const TableRegistry& Tables() const { return tables; }
};

struct InstanceState;

/// One record of a table: an ordered list of properties and attribute records. The plug-in owns
/// it; the repository copies it. All texts are in the code page of the machine.
class REPOSITORY_API RInstance {
 public:
  /// A record of table class `className` under the instance key `key`. `number` is the host's and
  /// always -1 here.
  RInstance(const std::string& className, const std::string& key, int number);
  RInstance(const RInstance&) = delete;
  RInstance& operator=(const RInstance&) = delete;
  ~RInstance();

  /// Sets the property `key` (an identifier such as "SerialNumber") with its display label and its
  /// value. `flag` is the host's and always false here. The host decides the meaning of
  /// setting a key again.
  void AddProperty(const std::string& key, const std::string& label, const std::string& value,
                   bool flag);
  void AddProperty(const std::string& key, const std::string& label, int value, bool flag);
  /// Attaches an attribute (name and value) to the property `propertyKey`.
  void AddPropertyAttr(const std::string& propertyKey, const std::string& name,
                       const std::string& value);
  /// Records a copy of the instance in its present state. The instance can change and be recorded
  /// again.
  void AddToRepository(RRepository& repository) const;

 private:
  std::unique_ptr<InstanceState> state;
};

struct RepositoryState;

/// The store of all instances, grouped by class name. Owned by the host.
class REPOSITORY_API RRepository {
 public:
  explicit RRepository(ConnectMode mode = ConnectMode::kDefault);
  RRepository(const RRepository&) = delete;
  RRepository& operator=(const RRepository&) = delete;
  ~RRepository();

 private:
  friend class RInstance;
  friend struct RepositoryState;
  std::unique_ptr<RepositoryState> state;
};

/// A table container, passed to a table's layout callback. The plug-in calls the two layout
/// operations and never reads a member; copying, moving and destroying it is compiled into
/// whoever passes it by value.
class RInstancesWrapper {
 public:
  struct PropertyRecord {
    std::string key;
    std::int32_t kind = 0;
    bool shown = false;
    bool editable = false;
    std::string label;
  };
  struct NamedFlag {
    std::string name;
    bool set = false;
  };
  using Callback = boost::function<void(RInstancesWrapper&)>;

  RInstancesWrapper() = default;
  REPOSITORY_INLINE_API RInstancesWrapper(const RInstancesWrapper& other);
  /// Leaves `other` empty: no text, no elements, no callback, zeros.
  REPOSITORY_INLINE_API RInstancesWrapper(RInstancesWrapper&& other) noexcept;
  REPOSITORY_INLINE_API RInstancesWrapper& operator=(const RInstancesWrapper& other);
  /// As move construction.
  REPOSITORY_INLINE_API RInstancesWrapper& operator=(RInstancesWrapper&& other) noexcept;
  REPOSITORY_INLINE_API ~RInstancesWrapper();

  /// Lays the table out as one property per line, with two numbers of the host's.
  REPOSITORY_API void SetColumnHeaders(const std::vector<std::string>& headers, unsigned first,
                                       unsigned second);
  /// Lays the table out as one instance per line, with one display width per column (characters).
  REPOSITORY_API void SetRowHeaders(const std::vector<std::string>& names,
                                    const std::vector<unsigned>& widths, bool flag);

  // In the order in which the host declares them.
  std::string className;
  std::vector<std::uint64_t> numbers;
  Callback callback;
  std::vector<std::string> headers;
  std::vector<RInstancesWrapper> nestedTables;
  std::vector<PropertyRecord> properties;
  bool byRow = false;
  bool rowFlag = false;
  std::uint32_t columnCount = 0;
  std::vector<NamedFlag> flags;
  std::vector<std::pair<std::string, std::string>> pairs;
  std::uint64_t owner = 0;
};

inline RInstancesWrapper::RInstancesWrapper(const RInstancesWrapper& other) = default;
inline RInstancesWrapper& RInstancesWrapper::operator=(const RInstancesWrapper& other) = default;
inline RInstancesWrapper::~RInstancesWrapper() = default;

inline RInstancesWrapper::RInstancesWrapper(RInstancesWrapper&& other) noexcept
    : className(std::exchange(other.className, {})),
      numbers(std::exchange(other.numbers, {})),
      callback(std::exchange(other.callback, {})),
      headers(std::exchange(other.headers, {})),
      nestedTables(std::exchange(other.nestedTables, {})),
      properties(std::exchange(other.properties, {})),
      byRow(std::exchange(other.byRow, false)),
      rowFlag(std::exchange(other.rowFlag, false)),
      columnCount(std::exchange(other.columnCount, 0)),
      flags(std::exchange(other.flags, {})),
      pairs(std::exchange(other.pairs, {})),
      owner(std::exchange(other.owner, 0)) {}

inline RInstancesWrapper& RInstancesWrapper::operator=(RInstancesWrapper&& other) noexcept {
  className = std::exchange(other.className, {});
  numbers = std::exchange(other.numbers, {});
  callback = std::exchange(other.callback, {});
  headers = std::exchange(other.headers, {});
  nestedTables = std::exchange(other.nestedTables, {});
  properties = std::exchange(other.properties, {});
  byRow = std::exchange(other.byRow, false);
  rowFlag = std::exchange(other.rowFlag, false);
  columnCount = std::exchange(other.columnCount, 0);
  flags = std::exchange(other.flags, {});
  pairs = std::exchange(other.pairs, {});
  owner = std::exchange(other.owner, 0);
  return *this;
}

}  // namespace halyard::repository
