// An event dump. The input's first byte says how many short records come before the rest, so that
// every page border is within reach; the second one, how much event data stands there from before.
// A plainer reading foretells every column and every row, and all text of event data fits.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/checks.h"
#include "pqmodules/rsamplemodule2/event_log.h"
#include "tests/support/raid_reference.h"

namespace {

using fuzz::Require;

class ListedPages final : public pq::EventPages {
 public:
  std::vector<test::EventStep> steps;
  void Set(std::size_t page, const pq::Column& column, std::string_view value) override {
    Require(page < pq::kEventPageCount && !column.key.empty());
    steps.push_back({static_cast<int>(page), std::string(column.key), std::string(value)});
  }
  void Commit(std::size_t page) override {
    Require(page < pq::kEventPageCount);
    steps.push_back({static_cast<int>(page), "", ""});
  }
};

constexpr std::array<int, 8> kRecordsBefore = {0, 1, 2998, 2999, 5999, 8999, 11999, 12345};

ListedPages pages;
pq::EventData eventData;

/// Dumps of which so many records have been read.
std::vector<pq::EventDump> BegunDumps() {
  std::vector<pq::EventDump> dumps;
  for (const int records : kRecordsBefore) {
    dumps.emplace_back(pages, eventData);
    for (int i = 0; i < records; ++i) dumps.back().Take("seqNum: 0\n");
  }
  return dumps;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<pq::EventDump> begun = BegunDumps();
  if (size < 2) return 0;
  const std::size_t start = data[0] % kRecordsBefore.size();
  const int records = kRecordsBefore[start];
  std::string before(static_cast<std::size_t>(data[1]) * 8, 'b');
  const std::vector<std::string> lines =
      test::ReadLinesPlainly(std::string(reinterpret_cast<const char*>(data) + 2, size - 2));

  pages.steps.clear();
  eventData.Clear();
  eventData.Append(before);
  pq::EventDump dump = begun[start];
  for (const std::string& line : lines) {
    dump.Take(line);
    Require(eventData.Text().size() <= 2047);
  }

  Require(pages.steps == test::ReadEventsPlainly(lines, before, records, records));
  Require(eventData.Text() == before);
  return 0;
}
