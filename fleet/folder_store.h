// A store in a folder of this machine, or of one that it mounts.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "fleet/store.h"

namespace fleet {

class FolderStore : public Store {
 public:
  /// Throws StoreFailure.
  explicit FolderStore(const std::string& address);

  static void Create(const std::string& address);

  std::string DescribePlace(const std::string& key) const override;
  std::optional<std::string> Read(const std::string& key) const override;
  void Write(const std::string& key, std::string_view zip) const override;
  void Remove(const std::string& key) const override;
  void Settle() const override;

 private:
  std::filesystem::path FindPlace(const std::string& key) const;

  std::filesystem::path folder;
};

}  // namespace fleet
