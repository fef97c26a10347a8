// The texts of a recording that a value can be in, each with what it is.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/recorded/recording.h"
#include "host/redact/value_finder.h"
#include "host/text/decoder.h"

namespace host {

/// The bytes that shall take the place of `text`; nothing when it stays. `name` is for people, in
/// UTF-8: "storcli /c0 show".
using ChangeText = std::function<std::optional<std::string>(std::string_view text, TextPlace place,
                                                            const std::string& name)>;

/// Changes every text of `recording`, always in the same order; bytes that several of them have in
/// common once.
void ChangeTexts(Recording& recording, const TextDecoder& decode, const ChangeText& change);

/// What the tool prints.
TextPlace PlaceOfOutput(const RecordedCommand& command);

/// The command line, for people.
std::string DescribeCommand(const RecordedCommand& command, const TextDecoder& decode);

/// The machine does not tell small letters from capital ones.
bool IsInLogFolder(std::string_view path, std::string_view logFolder);

}  // namespace host
