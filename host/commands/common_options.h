// Options that commands of every program have, each said once.
#pragma once

#include <optional>
#include <string>

#include "host/commands/option_set.h"
#include "host/formats/formats.h"
#include "host/program/console.h"
#include "host/program/destination.h"

namespace host {

/// --time-limit, up to a day; the help says what is over then.
void AddTimeLimit(OptionSet& set, std::optional<unsigned>& seconds, const char* help);

/// How a result is written, and where.
struct ResultOptions {
  std::string format = Formats().front().name;
  Destination output;
  bool identifiesRows = false;
};

/// What formats are asked to show: a machine, or a table that may be about many.
enum class FormatsFor { kMachine, kAnswer };

/// --format; the help calls the result `noun`, as in "answer".
void AddFormat(OptionSet& set, ResultOptions& result, const char* noun, FormatsFor purpose);
/// --identify
void AddIdentify(OptionSet& set, ResultOptions& result);
/// --output
void AddOutput(OptionSet& set, ResultOptions& result, const char* noun);

/// Tells on standard error where a result is, unless that is standard output.
void TellWritten(const char* what, const Destination& destination, const Console& console);

/// The format asked for. Throws UsageError when it is nothing for a terminal and would go to one.
const Format& ChooseFormat(const ResultOptions& result, const Console& console);

}  // namespace host
