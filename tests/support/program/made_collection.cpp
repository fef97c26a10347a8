#include "tests/support/program/made_collection.h"

#include <memory>
#include <sstream>

namespace test {

using halyard::repository::RInstance;
using halyard::repository::RRepository;

MadeCollection::MadeCollection() {
  collection.repository = std::make_unique<RRepository>();
  collection.modules.push_back({"Example", "For tests"});
  collection.collected =
      std::chrono::sys_days{std::chrono::year{2026} / 11 / 18} + std::chrono::seconds(34867);
  collection.machine.recorded = true;
}

MadeCollection& MadeCollection::Table(const std::string& className, bool byRow) {
  collection.tables.push_back({className, "Example", {byRow, {}, {}}, nullptr, {}});
  return *this;
}

MadeCollection& MadeCollection::Row(const Pairs& properties) {
  RInstance instance(collection.tables.back().className, "made", -1);
  int number = 0;
  for (const auto& [label, value] : properties) {
    std::string key = std::to_string(++number);
    key.insert(key.begin(), 'k');
    instance.AddProperty(key, label, value, false);
  }
  instance.AddToRepository(*collection.repository);
  return *this;
}

MadeCollection& MadeCollection::FileRow(const std::string& content, const std::string& fileName) {
  RInstance instance(collection.tables.back().className, "made", -1);
  instance.AddProperty("file", "File", content, false);
  instance.AddPropertyAttr("file", "raw", "true");
  instance.AddPropertyAttr("file", "filename", fileName);
  instance.AddToRepository(*collection.repository);
  return *this;
}

host::Collection& MadeCollection::Get() {
  const auto& stored = host::TablesOf(*collection.repository);
  for (host::CollectedTable& table : collection.tables) {
    const auto found = stored.find(table.className);
    table.rows = found == stored.end() ? nullptr : &found->second;
  }
  return collection;
}

std::string MadeCollection::As(const std::string& format, const host::Screen& screen) {
  std::ostringstream out;
  host::FindFormat(format)->write(Get(), screen, out);
  return out.str();
}

}  // namespace test
