// What a row needs to be told from those of other machines and other times.
#pragma once

#include <string>

#include "host/collect/collection.h"

namespace host {

/// UTF-8; empty where it is not known.
struct RowIdentity {
  std::string machine;     ///< what to call it
  std::string serial;      ///< of the machine
  std::string recordedAt;  ///< ISO 8601: when its tools answered
  /// The same for a recording of the same content, another one for each live collection.
  std::string collection;
};

RowIdentity MakeRowIdentity(const Collection& collection);

/// Hexadecimal digits that nobody can have known before.
std::string MakeRandomText();

}  // namespace host
