// The recordings, each once, by the key of its content: STORE/ab/abcd….zip. With the submissions of
// the database it is all that has to be kept; whatever else there is can be made again.
#pragma once

#include <filesystem>
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

class Store {
 public:
  /// Opens what Create() made. Throws StoreFailure, as when its disk is not mounted: an empty
  /// folder in its place would look like a store that lost everything.
  explicit Store(std::filesystem::path folder);

  /// Makes it in a new or empty folder, or leaves the one that is there. Throws StoreFailure.
  static void Create(const std::filesystem::path& folder);

  /// Where the recording with this key is, or would be.
  std::filesystem::path FindPlace(const std::string& key) const;
  bool Has(const std::string& key) const;
  /// Its bytes; none when it is not there. Throws StoreFailure.
  std::optional<std::string> Read(const std::string& key) const;
  /// Keeps the bytes of a ZIP file, whole or not at all, in the place of what is there. Throws
  /// StoreFailure.
  void Write(const std::string& key, std::string_view zip) const;
  /// Also when it is not there. Throws StoreFailure.
  void Remove(const std::string& key) const;
  /// All that was written survives a loss of power. Throws StoreFailure.
  void Settle() const;

 private:
  std::filesystem::path folder;
};

}  // namespace fleet
