#include "host/formats/parts_document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "host/answers/parts/part_tables.h"
#include "tests/support/collected.h"

namespace {

std::string ReadDocument(const std::string& name) {
  std::ifstream file(test::SamplesFolder() + "/../docs/" + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(PartsDocument, IsTheOneInDocs) {
  EXPECT_EQ(host::WritePartsDocument(), ReadDocument("parts.md"))
      << "docs/parts.md is stale: pqhost modules --format parts > docs/parts.md";
}

TEST(PartsSchema, HasTheColumnsOfEveryPart) {
  const auto schema = nlohmann::json::parse(ReadDocument("collection.schema.json"));
  const auto& parts = schema["properties"]["parts"]["properties"];
  EXPECT_EQ(parts.size(), host::GetPartTables().size());
  for (const host::PartTable& table : host::GetPartTables()) {
    const std::string name(table.name);
    ASSERT_TRUE(parts.contains(name)) << name;
    const auto& columns = parts[name]["items"]["properties"];
    EXPECT_EQ(columns.size(), table.columns.size()) << name;
    for (const host::PartColumn& column : table.columns) {
      const char* type = column.type == host::PartType::kInteger ? "integer"
                         : column.type == host::PartType::kReal  ? "number"
                                                                 : "string";
      ASSERT_TRUE(columns.contains(std::string(column.name))) << name << " " << column.name;
      EXPECT_EQ(columns[std::string(column.name)]["type"][0], type) << name << " " << column.name;
    }
  }
}

}  // namespace
