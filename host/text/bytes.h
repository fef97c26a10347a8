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
      : text(text.empty() ? nullptr : std::make_shared<std::string>(std::move(text))) {}
  Bytes(const char* text) : Bytes(std::string(text)) {}

  const std::string& Text() const { return text ? *text : kNoText; }
  operator const std::string&() const { return Text(); }
  operator std::string_view() const { return Text(); }
  bool empty() const { return text == nullptr; }
  std::size_t size() const { return Text().size(); }

  void clear() { text.reset(); }
  Bytes& operator+=(std::string_view more) {
    if (more.empty()) return *this;
    if (text == nullptr || text.use_count() > 1) text = std::make_shared<std::string>(Text());
    text->append(more);
    return *this;
  }

  /// Whether both are one text in memory.
  bool SharesWith(const Bytes& other) const { return text == other.text; }

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
  static inline const std::string kNoText;

  std::shared_ptr<std::string> text;  ///< null when empty
};

}  // namespace host
