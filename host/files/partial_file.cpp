#include "host/files/partial_file.h"

#include <fmt/format.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "host/files/whole_file.h"

namespace host {
namespace {

namespace fs = std::filesystem;

using PathCharacters = const fs::path::value_type*;

// For signal handlers, which can be given no object. A program has three such files at most.
std::array<std::atomic<PathCharacters>, 4> partialPaths;
static_assert(std::atomic<PathCharacters>::is_always_lock_free);

void ExchangeSlot(PathCharacters expected, PathCharacters wanted) {
  for (std::atomic<PathCharacters>& slot : partialPaths) {
    PathCharacters found = expected;
    if (slot.compare_exchange_strong(found, wanted)) return;
  }
}

}  // namespace

PartialFile::PartialFile(fs::path target, Readers readers) : target(std::move(target)) {
  constexpr int kAttempts = 100;
  for (int attempt = 0; attempt < kAttempts && !handle.IsOpen(); ++attempt) {
    path = this->target;
    path += fmt::format(".{:08x}.part", std::random_device{}());
    errno = 0;
    handle = CreateNewFile(path, readers);
    if (!handle.IsOpen() && errno != EEXIST) break;
  }
  if (!handle.IsOpen()) throw std::runtime_error(DescribeUnwritable(this->target));
  ExchangeSlot(nullptr, path.c_str());
}

PartialFile::~PartialFile() {
  if (path.empty()) return;
  handle.Close();
  UnlinkFile(path.c_str());
  Forget();
}

bool PartialFile::PutInPlace() {
  if (!MoveIntoPlace(path, target)) return false;
  Forget();
  return true;
}

void PartialFile::Forget() {
  ExchangeSlot(path.c_str(), nullptr);
  path.clear();
}

void RemovePartialFiles() {
  for (const std::atomic<PathCharacters>& slot : partialPaths) {
    if (const PathCharacters path = slot) UnlinkFile(path);
  }
}

}  // namespace host
