#include "fleet/isolated_parse.h"

#include <stdexcept>
#include <utility>

namespace fleet {

WorkedRecording ParseIsolated(const Store& store, Parser& parser, const RowTables& tables,
                              const std::string& key, const std::optional<host::LocalTime>& taken,
                              const IsolationLimits& limits, Sandbox sandbox) {
  WorkedRecording worked;
  std::optional<std::string> zip = store.Read(key);
  if (!zip) {
    worked.failure = "it is not in the store: submit it again";
    return worked;
  }
  IsolatedAnswer isolated =
      RunIsolated([&] { return Pack(parser.Parse(std::move(*zip), key, taken)); }, limits, sandbox);
  worked.cpuMicroseconds = isolated.cpuMicroseconds;
  worked.failure = std::move(isolated.failure);
  worked.mayPass = isolated.mayPass;
  if (!worked.failure.empty()) return worked;
  try {
    worked.parsed = Unpack(isolated.answer);
    worked.failure = FindMisfit(worked.parsed, tables);
  } catch (const std::runtime_error& error) {
    worked.failure = error.what();
  }
  if (!worked.failure.empty()) worked.parsed = {};
  return worked;
}

}  // namespace fleet
