#include "host/program/large_texts.h"

#include <malloc.h>

namespace host {

void GiveBackLargeTexts() {
  constexpr int kLarge = 1 << 20;  // unless it is set, it grows with every text
  mallopt(M_MMAP_THRESHOLD, kLarge);
}

}  // namespace host
