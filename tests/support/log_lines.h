// The log lines that come while an object lives.
#pragma once

#include <string>
#include <vector>

#include "host/logger/logger.h"

namespace test {

class LogLines {
 public:
  std::vector<std::string> texts;  ///< "level text"

 private:
  host::LogSinkInUse sink{[this](const host::LogLine& line) {
    texts.push_back(std::to_string(line.level) + " " + line.text);
  }};
};

}  // namespace test
