// JSON of one row per line, as docs/json.md describes it.

#include <string>

#include "host/collect/table_view.h"
#include "host/formats/formats.h"
#include "host/formats/json_buffer.h"
#include "host/formats/json_rows.h"
#include "host/formats/row_identity.h"
#include "host/text/json_text.h"

namespace host {
namespace {

/// The members that begin each line.
std::string DescribeIdentity(const Collection& collection) {
  const RowIdentity identity = MakeRowIdentity(collection);
  std::string object = JsonObject()
                           .AddText("machine", identity.machine)
                           .AddText("serial", identity.serial)
                           .AddText("recordedAt", identity.recordedAt)
                           .AddText("collection", identity.collection)
                           .Take();
  object.back() = ',';
  return object.substr(1);
}

}  // namespace

void WriteJsonLines(const Collection& collection, const Screen& screen, std::ostream& out) {
  const CollectionView view(collection, ChooseAttachments(screen));
  JsonBuffer json(&WriteJsonForTerminal, out);
  const std::string identity = collection.machineIsKnown ? DescribeIdentity(collection) : "";
  for (const CollectedTable& collected : collection.tables) {
    const TableView table = view.ViewTable(collected);
    const JsonRows rows(table);
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      json += "{";
      json += identity;
      json.AppendText("\"class\":", table.ClassName());
      json += ",\"row\":";
      rows.Append(i, json);
      json += "}\n";
      json.Flush();
    }
  }
}

}  // namespace host
