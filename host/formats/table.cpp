// A screen for people: the machine, its verdict and what is wrong with it, problems of the
// collection and a line for each table; then the tables.
//
//   ARP table · ARPINFO · 2 rows
//   Internet Address  Physical Address   Type
//   ────────────────  ─────────────────  ───────
//   10.20.0.1         00-1b-21-3c-4d-5e  dynamic

#include <algorithm>
#include <cstddef>
#include <vector>

#include "host/collect/table_view.h"
#include "host/formats/collection_summary.h"
#include "host/formats/formats.h"
#include "host/formats/shown_table.h"
#include "host/formats/styled_screen.h"
#include "host/formats/table_overview.h"

namespace host {

void WriteTables(const Collection& collection, const Screen& screen, std::ostream& out) {
  const CollectionView view(collection, ChooseAttachments(screen));
  StyledScreen styled(screen, out);
  const std::vector<TableGroup> groups = GroupTables(collection);
  if (collection.machineIsKnown) WriteOverview(view, groups, styled);
  const char* separator = collection.machineIsKnown ? "\n" : "";
  for (const TableGroup& group : groups) {
    const auto isShown = [&](std::size_t i) {
      return !collection.machineIsKnown || collection.tables[i].RowCount() > 0;
    };
    if (std::ranges::none_of(group.tables, isShown)) continue;
    out << separator;
    separator = "\n";
    styled.WriteHead(view.Excerpt(group.area));
    for (const std::size_t i : group.tables) {
      if (!isShown(i)) continue;
      out << '\n';
      WriteTable(view.ViewTable(collection.tables[i]), screen.showsAll, styled);
    }
  }
}

}  // namespace host
