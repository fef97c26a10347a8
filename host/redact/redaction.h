// Takes out of a recording what its sender keeps to himself. A redacted recording is one as any
// other: its replay gives the same tables but for the pseudonyms.
#pragma once

#include <string>
#include <vector>

#include "host/recorded/recording.h"
#include "host/redact/kinds.h"
#include "host/redact/pseudonyms.h"
#include "host/redact/value_list.h"

namespace host {

struct RedactedRecording {
  Recording recording;  ///< without a content key; its submission tells what was replaced
  std::vector<ListedValue> values;  ///< that were replaced, in the order in which they were found
  /// Texts that cannot be searched and were emptied, for people, in UTF-8.
  std::vector<std::string> leftOut;
  /// Where the result still has a value; not to be passed on when there is one.
  std::vector<std::string> leaks;
};

/// Replaces in `recording` what `rules` names. The same recording, rules and key give the same
/// result.
RedactedRecording RedactRecording(const Recording& recording, const RedactionRules& rules,
                                  const Pseudonyms& pseudonyms);

}  // namespace host
