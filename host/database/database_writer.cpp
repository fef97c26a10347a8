#include "host/database/database_writer.h"

#include <cstdint>

#include "host/database/class_table.h"
#include "host/database/database_copy.h"
#include "host/database/own_tables.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {

DatabaseWriter::DatabaseWriter(Database& database, Machines machines)
    : handle(database.handle), tables(database.handle, machines) {
  Execute(handle, "BEGIN");
  MakeOwnTables(tables);
}

void DatabaseWriter::Add(const CollectionView& view, const Facts& facts, std::string_view name) {
  tables.BeginMachine(name);
  const Collection& collection = view.GetCollection();
  AddMachine(view, facts);
  SqlRows& modules = tables.AddTo(kModulesTable);
  std::int64_t position = 0;
  for (const CollectedModule& collected : collection.modules) {
    const auto [module, description] = view.ViewModule(collected);
    (modules.Begin() << ++position << module << description).Run();
  }
  position = 0;
  for (const CollectedTable& table : collection.tables) {
    AddClassTable(view.ViewTable(table), ++position, tables);
  }
  SqlRows& problems = tables.AddTo(kProblemsTable);
  position = 0;
  for (const std::string& problem : collection.problems) {
    (problems.Begin() << ++position << problem).Run();
  }
  SqlRows& log = tables.AddTo(kLogTable);
  position = 0;
  collection.log.ForEach([&](const KeptLog::Line& line) {
    (log.Begin() << ++position << static_cast<std::int64_t>(line.level) << line.file
                 << static_cast<std::int64_t>(line.line))
        .Borrow(view.LogText(line))
        .Run();
  });
}

void DatabaseWriter::AddMachine(const CollectionView& view, const Facts& more) {
  const Collection& collection = view.GetCollection();
  const MachineFacts& facts = collection.machine;
  const Facts own = {
      {"name", facts.name},
      {"description", facts.description},
      {"recorded", facts.recorded ? "yes" : "no"},
      {"collected", FormatIsoTime(collection.collected)},
      {"languageId", std::to_string(facts.languageId)},
      {"codePage", std::to_string(facts.PrintedCodePage())},
      {"hostExecutable", std::string(view.HostExecutable())},
      {"logFolder", std::string(view.LogFolder())},
      {"recordedAt", facts.recordedAt ? FormatIsoTime(*facts.recordedAt) : ""},
      {"system", facts.system},
      {"contentKey", facts.contentKey},
      {"pqhost", kVersion},
  };
  AddFacts(own);
  AddFacts(more);
}

void DatabaseWriter::AddFacts(const Facts& facts) {
  SqlRows& rows = tables.AddTo(kMachineTable);
  for (const auto& [name, value] : facts) (rows.Begin() << name << value).Run();
}

void DatabaseWriter::AddFacts(const Facts& facts, std::string_view name) {
  tables.BeginMachine(name);
  AddFacts(facts);
}

void DatabaseWriter::AddRows(
    std::string_view name, const std::vector<PlainColumn>& columns, std::size_t rowCount,
    const std::function<void(std::size_t row, Statement& values)>& addValues) {
  SqlTable& table = tables.Find(name, /*isOfClass=*/false);
  std::vector<SqlColumn> wanted;
  for (const PlainColumn& column : columns) {
    wanted.push_back({.name = std::string(column.name), .type = column.type});
  }
  tables.Provide(table, wanted);
  SqlRows rows = tables.AddRows(table);
  for (std::size_t row = 0; row < rowCount; ++row) {
    Statement& values = rows.Begin();
    addValues(row, values);
    values.Run();
  }
}

void DatabaseWriter::Copy(Database& from, std::string_view machine) {
  tables.BeginMachine(machine);
  CopyTables(from, tables);
}

void DatabaseWriter::Complete() {
  AddDescribedClasses(tables);
  tables.MakeViews();
  Execute(handle, "COMMIT");
}

}  // namespace host
