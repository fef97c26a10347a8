// The environment of the program under test.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace test {

/// A variable of the environment, changed as long as this lives; null: without it.
class ChangedVariable {
 public:
  ChangedVariable(const char* name, const char* value) : name(name) {
    if (const char* old = std::getenv(name)) before = old;
    Set(value);
  }
  ChangedVariable(const ChangedVariable&) = delete;
  ChangedVariable& operator=(const ChangedVariable&) = delete;
  ~ChangedVariable() { Set(before ? before->c_str() : nullptr); }

 private:
  void Set(const char* value) const { value == nullptr ? unsetenv(name) : setenv(name, value, 1); }

  const char* name;
  std::optional<std::string> before;
};

}  // namespace test
