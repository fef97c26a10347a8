#pragma once

#include <stdexcept>

namespace host {

/// The program was used wrongly: what is wrong and what would be right, in one line of UTF-8.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace host
