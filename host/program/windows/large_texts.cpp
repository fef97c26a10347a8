#include "host/program/large_texts.h"

namespace host {

// The system's heap does so by itself.
void GiveBackLargeTexts() {}

}  // namespace host
