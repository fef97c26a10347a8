// The log lines that come while an object lives.
#pragma once

#include <string>
#include <vector>

#include "host/logger/logger.h"

namespace test {

class LogLines {
 public:
  LogLines() {
    host::SetLogSink([this](const host::LogLine& line) {
      texts.push_back(std::to_string(line.level) + " " + line.text);
    });
  }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;
  ~LogLines() { host::SetLogSink({}); }

  std::vector<std::string> texts;  ///< "level text"
};

}  // namespace test
