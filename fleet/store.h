// The recordings, each once, by the key of its content: STORE/ab/abcd….zip. With the submissions of
// the database it is all that has to be kept; whatever else there is can be made again.
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace fleet {

/// The store itself is not there, or cannot be read or written, in one line of UTF-8.
class StoreFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Where a store is.
struct StorePlace {
  std::string address;      ///< a folder, or http://… or https://…
  std::string certificate;  ///< this program's, with its key, for https; a PEM file, or empty
};

class Store {
 public:
  Store() = default;
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;
  virtual ~Store() = default;

  /// Where the recording with this key is, or would be, for people.
  virtual std::string DescribePlace(const std::string& key) const = 0;
  /// Its bytes; none when it is not there. Throws StoreFailure.
  virtual std::optional<std::string> Read(const std::string& key) const = 0;
  /// Keeps the bytes of a ZIP file, whole or not at all, in the place of what is there. Throws
  /// StoreFailure.
  virtual void Write(const std::string& key, std::string_view zip) const = 0;
  /// Also when it is not there. Throws StoreFailure.
  virtual void Remove(const std::string& key) const = 0;
  /// All that was written survives a loss of power, as far as that is in this machine's hands.
  /// Throws StoreFailure.
  virtual void Settle() const = 0;
};

/// What CreateStore() made. Throws StoreFailure, as when its disk is not mounted: an empty folder
/// in its place would look like a store that lost everything.
std::unique_ptr<Store> OpenStore(const StorePlace& place);

/// Makes it in a new or empty folder, or leaves the one that is there. Throws StoreFailure.
void CreateStore(const StorePlace& place);

/// What tells a store from an empty place, and what is in it.
inline constexpr char kStoreMark[] = "pqfleet-store";
inline constexpr char kStoreMarkText[] = "1\n";

/// Where a recording is, below the store: ab/abcd….zip
std::string NameInStore(const std::string& key);

}  // namespace fleet
