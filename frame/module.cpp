#include "frame/module.h"

namespace pq {

void CollectionModule::FormatRowTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {}, false);
}

}  // namespace pq
