// Tables of a tool's lines: one instance that is handed over once per line, each time with that
// line as the value of the one property.
#pragma once

#include <string>

#include "frame/module.h"

namespace pq {

/// The property that all lines of a table share.
struct LineProperty {
  const char* key = "";
  const char* name = "";
};

/// Sets the property to `line` and hands the instance over as it stands.
inline void AddLine(RInstance& instance, RRepository& repo, const LineProperty& property,
                    const std::string& line) {
  instance.AddProperty(property.key, property.name, line, kPropertyFlag);
  instance.AddToRepository(repo);
}

}  // namespace pq
