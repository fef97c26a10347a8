#include "fleet/process_heap.h"

#include <sys/mman.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#define PQ_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define PQ_SANITIZED 0
#endif

namespace fleet {
namespace {

/// What the system maps and clears at once, where it has so large a piece.
constexpr std::size_t kHugePage = std::size_t{2} << 20;
/// More than most recordings need; what does not fit malloc has.
constexpr std::size_t kRoom = 4 * kHugePage;

/// Pieces of some fixed sizes, each behind the number of its size. What is given back is for the
/// next of that size.
class ProcessHeap {
 public:
  void Begin() noexcept {
    void* const mapped = mmap(nullptr, kRoom + kHugePage, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) return;
    begin = (reinterpret_cast<std::uintptr_t>(mapped) + kHugePage - 1) & ~(kHugePage - 1);
    madvise(reinterpret_cast<void*>(begin), kRoom, MADV_HUGEPAGE);
    next = begin + kAlignment;
    end = begin + kRoom;
  }

  bool Has(const void* piece) const noexcept {
    return reinterpret_cast<std::uintptr_t>(piece) - begin < end - begin;
  }

  /// Null when there is no room, or never was.
  void* Take(std::size_t size) noexcept {
    if (next == 0 || size > kLargest) return nullptr;
    const std::size_t kind = FindKind(size + kHead);
    if (Free* const piece = free[kind]) {
      free[kind] = piece->next;
      return piece;
    }
    const std::size_t whole = GetSize(kind);
    if (end - next < whole) return nullptr;
    auto* const piece = reinterpret_cast<std::size_t*>(next);
    piece[-1] = kind;
    next += whole;
    return piece;
  }

  void Return(void* piece) noexcept {
    Free*& first = free[static_cast<std::size_t*>(piece)[-1]];
    first = new (piece) Free{first};
  }

 private:
  struct Free {
    Free* next;
  };

  static constexpr std::size_t kAlignment = 16;
  static constexpr std::size_t kHead = sizeof(std::size_t);
  static constexpr std::size_t kLargest = std::size_t{1} << 20;
  /// Multiples of the alignment, then powers of two.
  static constexpr std::size_t kEvenKinds = 64;
  static constexpr std::size_t kLargestEven = kEvenKinds * kAlignment;
  static constexpr std::size_t kKinds = kEvenKinds + std::bit_width(kLargest / kLargestEven) + 1;

  static std::size_t FindKind(std::size_t size) noexcept {
    if (size <= kLargestEven) return (size - 1) / kAlignment;
    return kEvenKinds - 1 + static_cast<std::size_t>(std::bit_width((size - 1) / kLargestEven));
  }
  static std::size_t GetSize(std::size_t kind) noexcept {
    if (kind < kEvenKinds) return (kind + 1) * kAlignment;
    return kLargestEven << (kind - kEvenKinds + 1);
  }

  std::uintptr_t begin = 0;
  std::uintptr_t next = 0;  ///< where the next piece begins, behind its number
  std::uintptr_t end = 0;
  std::array<Free*, kKinds> free{};
};

constinit ProcessHeap processHeap;

[[maybe_unused]] void* TakeFromSystem(std::size_t size) {
  while (true) {
    if (void* const piece = std::malloc(size == 0 ? 1 : size)) return piece;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

}  // namespace

void BeginProcessHeap() noexcept { processHeap.Begin(); }

}  // namespace fleet

// Sanitizers watch over memory with operators of their own.
#if !PQ_SANITIZED
// Those of arrays, and those that throw nothing, call these. Weak: a program may have its own.
[[gnu::weak]] void* operator new(std::size_t size) {
  if (void* const piece = fleet::processHeap.Take(size)) return piece;
  return fleet::TakeFromSystem(size);
}
[[gnu::weak]] void operator delete(void* piece) noexcept {
  if (fleet::processHeap.Has(piece)) return fleet::processHeap.Return(piece);
  std::free(piece);
}
[[gnu::weak]] void operator delete(void* piece, std::size_t) noexcept { ::operator delete(piece); }
#endif
