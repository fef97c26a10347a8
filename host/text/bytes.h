// A text that several owners share.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

namespace host {

/// Bytes, such as a tool's report, which can be hundreds of megabytes: copies share them, so that
/// they exist once as a recording's answer, as the file that it went to and as what is being read.
/// A change of one copy leaves the others alone. Copies may be used on different threads.
class Bytes {
 public:
  Bytes() = default;
  // Implicit, so that a recording can be written down as plain texts.
  Bytes(std::string text)
      : held(text.empty() ? nullptr : std::make_shared<Held>(Held{std::move(text), {}, {}})) {}
  Bytes(const char* text) : Bytes(std::string(text)) {}
  /// `text` that is elsewhere, such as in a file that is mapped into memory, while `keeper` lives.
  Bytes(std::string_view text, std::shared_ptr<const void> keeper)
      : held(text.empty() ? nullptr : std::make_shared<Held>(Held{{}, text, std::move(keeper)})) {}

  std::string_view Text() const { return held ? held->Text() : std::string_view(""); }
  operator std::string_view() const { return Text(); }
  bool empty() const { return held == nullptr; }
  std::size_t size() const { return Text().size(); }
  /// Whether somebody else keeps them.
  bool IsElsewhere() const { return held != nullptr && held->keeper != nullptr; }

  void clear() { held.reset(); }
  Bytes& operator+=(std::string_view more) {
    if (more.empty()) return *this;
    if (held == nullptr || held.use_count() > 1 || IsElsewhere()) {
      held = std::make_shared<Held>(Held{std::string(Text()), {}, {}});
    }
    held->own.append(more);
    return *this;
  }

  /// Whether both are one text in memory.
  bool SharesWith(const Bytes& other) const { return held == other.held; }

  friend bool operator==(const Bytes& a, const Bytes& b) { return a.Text() == b.Text(); }
  template <typename Other>
  requires(!std::same_as<Other, Bytes> &&
           std::convertible_to<const Other&, std::string_view>) friend bool
  operator==(const Bytes& a, const Other& b) {
    return a.Text() == std::string_view(b);
  }
  friend std::ostream& operator<<(std::ostream& out, const Bytes& bytes) {
    return out << bytes.Text();
  }

 private:
  struct Held {
    std::string_view Text() const { return keeper ? elsewhere : std::string_view(own); }

    std::string own;
    std::string_view elsewhere;
    std::shared_ptr<const void> keeper;  ///< null: the bytes are its own
  };

  std::shared_ptr<Held> held;  ///< null when empty
};

}  // namespace host
