#include "host/secrets/secret.h"

#include <algorithm>
#include <utility>

#include "host/secrets/clear_memory.h"

namespace host {

void Wipe(std::string& text) {
  text.resize(text.capacity());
  ClearMemory(text.data(), text.size());
  text.clear();
}

// A short text is in the string itself, and moving it leaves a copy.

Secret::Secret(std::string given) : text(std::move(given)) { Wipe(given); }

Secret::Secret(Secret&& other) noexcept : text(std::move(other.text)) { Wipe(other.text); }

Secret& Secret::operator=(Secret other) noexcept {
  Wipe(text);
  text = std::move(other.text);
  Wipe(other.text);
  return *this;
}

void Secret::Append(std::string_view more) {
  if (text.size() + more.size() > text.capacity()) {
    std::string larger;
    larger.reserve(std::max(2 * text.size(), text.size() + more.size()));
    larger = text;
    std::swap(text, larger);
    Wipe(larger);
  }
  text += more;
}

}  // namespace host
