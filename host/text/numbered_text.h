// The order of texts that hold numbers, as people have it: "52:4" before "52:11".
#pragma once

#include <algorithm>
#include <compare>
#include <cstddef>
#include <string_view>

namespace host {

struct NumberedText {
  std::string_view text;

  bool operator==(const NumberedText&) const = default;
  std::strong_ordering operator<=>(const NumberedText& other) const {
    std::string_view one = text;
    std::string_view two = other.text;
    while (!one.empty() && !two.empty()) {
      const std::string_view number = TakeNumber(one);
      const std::string_view otherNumber = TakeNumber(two);
      if (!number.empty() && !otherNumber.empty()) {
        const auto order = CompareNumbers(number, otherNumber);
        if (order != std::strong_ordering::equal) return order;
        continue;
      }
      const char first = number.empty() ? one.front() : number.front();
      const char otherFirst = otherNumber.empty() ? two.front() : otherNumber.front();
      if (first != otherFirst) return first <=> otherFirst;
      one.remove_prefix(1);
      two.remove_prefix(1);
    }
    if (one.empty() != two.empty()) return two.empty() <=> one.empty();
    return text <=> other.text;
  }

 private:
  static std::string_view TakeNumber(std::string_view& text) {
    const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
    const std::string_view number = text.substr(0, length);
    text.remove_prefix(length);
    return number;
  }
  static std::strong_ordering CompareNumbers(std::string_view one, std::string_view two) {
    one.remove_prefix(std::min(one.find_first_not_of('0'), one.size()));
    two.remove_prefix(std::min(two.find_first_not_of('0'), two.size()));
    if (one.size() != two.size()) return one.size() <=> two.size();
    return one <=> two;
  }
};

}  // namespace host
