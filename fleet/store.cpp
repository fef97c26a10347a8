#include "fleet/store.h"

#include "fleet/folder_store.h"
#include "fleet/http_store.h"

namespace fleet {

std::unique_ptr<Store> OpenStore(const StorePlace& place) {
  if (IsHttpAddress(place.address)) return std::make_unique<HttpStore>(place);
  return std::make_unique<FolderStore>(place.address);
}

void CreateStore(const StorePlace& place) {
  if (IsHttpAddress(place.address)) {
    HttpStore::Create(place);
  } else {
    FolderStore::Create(place.address);
  }
}

std::string NameInStore(const std::string& key) { return key.substr(0, 2) + "/" + key + ".zip"; }

}  // namespace fleet
