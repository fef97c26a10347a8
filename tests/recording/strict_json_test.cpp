#include "host/recording/strict_json.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <vector>

namespace host {
namespace {

using Json = nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

/// Reads `text` and appends the elements of its list "items" to `elements`.
Json Read(std::string_view text, std::vector<std::string>& elements) {
  return ReadStrictJson(text, "items",
                        [&](const Json& element) { elements.push_back(element.dump()); });
}

TEST(StrictJson, PassesTheElementsOfTheListOnAndForgetsThem) {
  std::vector<std::string> elements;
  const Json read = Read(R"({"a": [1, {"items": [2]}], "items": [3, [4, {}], {"b": [5]}, []],
                             "c": {"items": [6]}, "d": -7})",
                         elements);
  EXPECT_THAT(elements, ElementsAre("3", "[4,{}]", R"({"b":[5]})", "[]"));
  EXPECT_EQ(read.dump(), R"({"a":[1,{"items":[2]}],"c":{"items":[6]},"d":-7,"items":[]})");
}

TEST(StrictJson, PassesNothingOnWithoutTheList) {
  for (const char* text : {"[]", "7", R"([{"items":[1]}])", R"({"items":{"items":[1]}})"}) {
    std::vector<std::string> elements;
    EXPECT_EQ(Read(text, elements).dump(), text);
    EXPECT_THAT(elements, IsEmpty()) << text;
  }
}

TEST(StrictJson, TakesSixteenBracketsAroundAValueAndNotOneMore) {
  std::vector<std::string> elements;
  const std::string deep = std::string(16, '[') + "true" + std::string(16, ']');
  EXPECT_EQ(Read(deep, elements).dump(), deep);
  EXPECT_THAT([&] { Read("[" + deep + "]", elements); },
              testing::ThrowsMessage<std::runtime_error>(
                  "line 1, column 21: brackets are nested too deep"));
}

}  // namespace
}  // namespace host
