#pragma once

#include <stdexcept>

namespace host {

/// The program was used wrongly. Says in one line of UTF-8 how, and how to use it instead.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace host
