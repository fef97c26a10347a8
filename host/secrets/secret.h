// A text that must not stay in memory once it is no longer needed.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// Overwrites all memory of `text`, which is empty then. No compiler leaves that out.
void Wipe(std::string& text);

/// Overwrites what it held when it ends, moves or grows.
class Secret {
 public:
  Secret() = default;
  // Implicit, so that a login can be written down as plain texts. Takes the text over.
  Secret(std::string given);
  Secret(const char* given) : Secret(std::string(given)) {}
  Secret(const Secret& other) = default;
  Secret(Secret&& other) noexcept;
  Secret& operator=(Secret other) noexcept;
  ~Secret() { Wipe(text); }

  std::string_view View() const { return text; }
  void Append(std::string_view more);
  void Clear() { Wipe(text); }

  bool operator==(const Secret&) const = default;

 private:
  std::string text;
};

}  // namespace host
