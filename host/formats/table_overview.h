// The first screen of a collection: its machine, verdict and problems, and a line for each table.
#pragma once

#include <vector>

#include "host/catalogue/areas.h"
#include "host/collect/table_view.h"
#include "host/formats/styled_screen.h"

namespace host {

void WriteOverview(const CollectionView& view, const std::vector<TableGroup>& groups,
                   StyledScreen& screen);

}  // namespace host
