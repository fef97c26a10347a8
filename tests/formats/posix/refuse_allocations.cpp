// Collects a sample and writes it in every format while memory runs out, once at each allocation
// that is made, or at as many of them as COUNT, spread over all:
//   refuse_allocations SAMPLE COUNT
// Whatever is asked for next is refused once, as by a machine that is short of memory for a moment.
// Prints a line for each promise that was broken: either everything is as it would have been, or it
// says that memory was short, or std::bad_alloc reaches the caller; nothing stays allocated; and
// the next collection is as always.
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <sstream>
#include <string>

#include "frame/description.h"
#include "host/collect/collect.h"
#include "host/formats/formats.h"
#include "tests/support/samples.h"

namespace {

// On one thread.
long long made = 0;
long long refusedAt = -1;  ///< its number; below 0: none
long long inUse = 0;

void* Allocate(std::size_t size) {
  if (made++ == refusedAt) throw std::bad_alloc();
  void* block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  inUse += static_cast<long long>(malloc_usable_size(block));
  return block;
}

void Free(void* block) {
  inUse -= static_cast<long long>(malloc_usable_size(block));
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Free(block); }
void operator delete[](void* block) noexcept { Free(block); }
void operator delete(void* block, std::size_t) noexcept { Free(block); }
void operator delete[](void* block, std::size_t) noexcept { Free(block); }

namespace {

struct Work {
  const char* name;
  std::string (*run)(const host::Recording& recording, const host::Collection& collection);
  bool isEverywhere = false;  ///< at each allocation, whatever COUNT is
};

// All of it, for a compiler has destroyed some parts of descriptions twice.
std::string DescribeAll(const host::Recording&, const host::Collection&) {
  std::string text;
  for (const pq::ModuleDescription& module : pq::DescribeModules()) text += module.name + "\n";
  return text;
}

template <void (*Write)(const host::Collection&, const host::Screen&, std::ostream&)>
std::string WriteAs(const host::Recording&, const host::Collection& collection) {
  std::ostringstream out;
  Write(collection, {}, out);
  // A stream swallows what is thrown while it is written to, and says so; so do programs.
  if (!out) throw std::bad_alloc();
  return out.str();
}

constexpr Work kWorks[] = {
    {"describe", &DescribeAll, /*isEverywhere=*/true},
    {"collect", [](const host::Recording& recording,
                   const host::Collection&) { return test::CollectTrace(recording); }},
    {"table", WriteAs<host::WriteTables>},
    {"json", WriteAs<host::WriteJson>},
    {"csv", WriteAs<host::WriteCsv>},
    {"html", WriteAs<host::WriteHtml>},
    {"sqlite", WriteAs<host::WriteSqlite>},
    {"prometheus", WriteAs<host::WritePrometheus>},
};

const Work* running = nullptr;

/// A module's own words, those of a verdict that could not be had, or its number.
bool TellsOfMemory(const std::string& text) {
  const std::size_t health = text.find("\npqhost_health ");
  return text.find("Malloc failed!") != std::string::npos ||
         text.find("out of memory") != std::string::npos ||
         (health != std::string::npos &&
          text.substr(0, text.find('\n', health + 1)).ends_with(" 3"));
}

[[noreturn]] void TellOfEnd() {
  std::printf("%s: the program ends at allocation %lld\n", running->name, refusedAt);
  std::fflush(stdout);
  std::_Exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const host::Recording recording = test::LoadSamples().at(argv[1]);
  const long long wanted = std::atoll(argv[2]);
  const host::Collection collection = host::Collect(recording, {});
  std::set_terminate(TellOfEnd);
  for (const Work& work : kWorks) {
    running = &work;
    const std::string whole = work.run(recording, collection);
    const long long before = made;
    // A report has a number of its own.
    const bool isRepeatable = work.run(recording, collection) == whole;
    const long long count = made - before;
    const long long step = work.isEverywhere ? 1 : std::max(1LL, count / wanted);
    long long refused = 0, different = 0, kept = 0;
    for (long long i = 0; i < count; i += step) {
      const long long used = inUse;
      refusedAt = made + i;
      try {
        const std::string got = work.run(recording, collection);
        if (got != whole && isRepeatable && !TellsOfMemory(got) && different++ == 0) {
          std::printf("%s: differs at allocation %lld\n", work.name, i);
        }
      } catch (const std::bad_alloc&) {
        ++refused;
      } catch (const std::exception& other) {
        std::printf("%s: at allocation %lld: %s\n", work.name, i, other.what());
      }
      refusedAt = -1;
      if (inUse != used && kept++ == 0) {
        std::printf("%s: keeps %lld bytes at allocation %lld\n", work.name, inUse - used, i);
      }
    }
    if (isRepeatable && work.run(recording, collection) != whole) {
      std::printf("%s: differs afterwards\n", work.name);
    }
    if (refused == 0) std::printf("%s: nothing was refused\n", work.name);
  }
  return 0;
}
