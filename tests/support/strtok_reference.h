// The C library's own way of taking a text apart, to hold ours against.
#pragma once

#include <cstring>
#include <string>
#include <vector>

namespace test {

/// The tokens that strtok finds in `bytes`, a text that ends at its first NUL.
inline std::vector<std::string> SplitWithStrtok(std::string bytes, const char* delimiters) {
  std::vector<std::string> tokens;
  for (const char* token = std::strtok(bytes.data(), delimiters); token != nullptr;
       token = std::strtok(nullptr, delimiters)) {
    tokens.emplace_back(token);
  }
  return tokens;
}

}  // namespace test
