// Compares two machines with logs of ENTRIES entries and as many drives and sensors, and does
// nothing else, so that its instructions can be counted.
//   compare_long_logs ENTRIES
#include <cstdlib>
#include <sstream>
#include <string>

#include "host/answers/difference/difference.h"
#include "host/formats/difference/difference_formats.h"

namespace {

/// `first`: of the log's numbers, and of the drives' serial numbers.
host::Parts MakeParts(long count, long first) {
  host::Parts parts;
  for (long i = first; i < first + count; ++i) {
    const std::string number = std::to_string(i);
    host::Event event;
    event.id = "sel " + number;
    event.source = "SEL";
    event.number = i;
    event.text = "Correctable ECC, DIMM(C1)";
    parts.events.push_back(event);
    host::Drive& drive = parts.drives.emplace_back();
    drive.id = "lsi0 1:" + number;
    drive.place = "1:" + number;
    drive.serial = "SERIAL" + number;
    drive.mediaErrors = i - first;
    host::Sensor& sensor = parts.sensors.emplace_back();
    sensor.id = "sensor " + number;
    sensor.status = i % 3 == 0 ? "ok" : "present";
  }
  return parts;
}

}  // namespace

int main(int, char** arguments) {
  const long count = std::strtol(arguments[1], nullptr, 10);
  const host::Collection collection;
  const host::Assessment before{MakeParts(count, 0), {}};
  const host::Assessment after{MakeParts(count, count / 2), {}};
  const host::NamedDifference named{
      "before", "after", host::FindDifference({collection, before}, {collection, after})};
  std::ostringstream out;
  host::WriteDifferenceTable(named, {.showsAll = true}, out);
  host::WriteDifferenceJson(named, {}, out);
  host::WriteDifferenceCsv(named, {}, out);
  host::WriteDifferenceSqlite(named, {}, out);
}
