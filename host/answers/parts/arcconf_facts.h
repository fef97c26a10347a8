// What the labels of arcconf's configuration report mean: a table of labels for each kind of part.
#pragma once

#include <string_view>

#include "host/answers/parts/parts.h"
#include "host/answers/parts/report_lines.h"

namespace host {

/// Takes over `told`, if its label means something for the part, and notes that it was read at
/// `at`. A label that is told twice counts once.
void LearnArcconfFact(Controller& controller, const LabelledValue& told, const Place& at);
void LearnArcconfFact(CacheBackup& backup, const LabelledValue& told, const Place& at);
void LearnArcconfFact(Group& group, const LabelledValue& told, const Place& at);
void LearnArcconfFact(Volume& volume, const LabelledValue& told, const Place& at);
void LearnArcconfFact(Drive& drive, const LabelledValue& told, const Place& at);

/// The word of "46 C/ 114 F (Abnormal)": what is in the last parentheses, otherwise all of `value`.
std::string_view FindArcconfWord(std::string_view value);

}  // namespace host
