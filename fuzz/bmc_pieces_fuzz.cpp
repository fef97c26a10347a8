// The BMC module's text pieces against plain readings of the same bytes: C string searches for the
// error screens, a zero-filled buffer for the joined self-test, strtok for pairs and sensor fields.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "frame/tokens.h"
#include "fuzz/checks.h"
#include "pqmodules/rbmcinfo/oem_queries.h"
#include "pqmodules/rbmcinfo/sensors.h"
#include "tests/support/strtok_reference.h"

namespace {

using fuzz::Require;

bool Holds(const std::string& bytes, const char* text) {
  return std::strstr(bytes.c_str(), text) != nullptr;
}

void CheckErrorScreens(const std::string& bytes) {
  Require(pq::HasOemErrorText(bytes) == (Holds(bytes, "Error") || Holds(bytes, "Bad response") ||
                                         Holds(bytes, "Cannot open an IPMI driver")));
  Require(pq::HasSensorErrorText(bytes) == (Holds(bytes, "Error in") || Holds(bytes, "Error:")));
}

void CheckSelfTestJoin(const std::string& bytes) {
  std::vector<char> buffer(bytes.begin(), bytes.end());
  buffer.resize(bytes.size() + 2, '\0');
  std::size_t count = 0;
  std::size_t position = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (buffer[i] != '\r') continue;
    ++count;
    if (position == 0) position = i;
  }
  if (count == 2) buffer[position] = buffer[position + 1] = ' ';

  const pq::CarriageReturns found = pq::FindCarriageReturns(bytes);
  Require(found.count == count && found.position == position);
  std::string joined = bytes;
  pq::JoinTwoLines(joined, found);
  Require(std::strcmp(joined.c_str(), buffer.data()) == 0);
}

void CheckPairs(const std::string& bytes) {
  const std::vector<std::string> expected = test::SplitWithStrtok(bytes, ":\n\r");
  std::vector<pq::NamedValue> pairs;
  pq::NamedValue pair;
  for (pq::TokenScan tokens = pq::ScanPairs(bytes); pq::NextPair(tokens, pair);) {
    pairs.push_back(pair);
  }
  Require(pairs.size() == (expected.size() + 1) / 2);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    Require((i % 2 == 0 ? pairs[i / 2].name : pairs[i / 2].value) == expected[i]);
  }
  if (expected.size() % 2 == 1) Require(pairs.back().value.empty());
}

void CheckSensorFields(const std::string& bytes) {
  std::array<std::vector<std::string>, 10> columns;
  std::size_t next = 0;
  bool endedByBlank = false;
  for (const std::string& field : test::SplitWithStrtok(bytes, "|\n\r")) {
    endedByBlank = next > 0 && field == " ";
    if (endedByBlank) break;
    columns[next++ % columns.size()].push_back(field);
  }

  const pq::SensorListing listing = pq::FindSensorListing(bytes);
  Require(listing.endedByBlank == endedByBlank);
  pq::TokenScan fields = listing.Fields();
  std::array<std::string_view, 10> dealt;
  std::size_t row = 0;
  for (; pq::DealRow(fields, dealt); ++row) {
    for (std::size_t column = 0; column < columns.size(); ++column) {
      const bool isThere = row < columns[column].size();
      Require(dealt[column] == (isThere ? columns[column][row] : std::string()));
    }
  }
  Require(row == columns[0].size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  CheckErrorScreens(bytes);
  CheckSelfTestJoin(bytes);
  CheckPairs(bytes);
  CheckSensorFields(bytes);
  return 0;
}
