// Values that say by themselves, or by where they are, of which kind they are.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/redact/kinds.h"

namespace host {

/// Takes a value that is from `begin` to `end` of the text.
using TakeValue = std::function<void(ValueKind kind, std::size_t begin, std::size_t end)>;

/// Addresses, GUIDs, world-wide names, mail addresses, names with a domain, paths, users in paths.
void FindByShape(std::string_view text, const TakeValue& take);

/// Values after a label such as "Serial Number:" or "SN =".
void FindByLabel(std::string_view text, const TakeValue& take);

/// The kind of value that a label announces; null for all others. `label` ends where its text does.
const ValueKind* FindLabelKind(std::string_view label);

/// What a text is.
enum class TextPlace {
  kOther,
  kConsole,       ///< what the operator typed for the AMT log tool
  kAmtArguments,  ///< of that tool
  kArguments,     ///< of another tool
  kConnections,   ///< what netstat prints
  kShares,        ///< what net share prints
  kHosts,         ///< a file of addresses and their names
};

/// Values where such a text has them.
void FindByPlace(std::string_view text, TextPlace place, const TakeValue& take);

/// Whether `value` is known to be no secret: too short, a word for nothing, what makers leave in
/// such a place, an account or a share that every Windows has.
bool IsNoSecret(ValueKind kind, std::string_view value);

/// Names of folders that every machine has.
bool IsCommonFolder(std::string_view name);

}  // namespace host
