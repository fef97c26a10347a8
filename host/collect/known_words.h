// The words that module descriptions know: of log lines, and of what tools print.
#pragma once

#include <string_view>

#include "frame/description.h"
#include "host/collect/tool_run.h"
#include "host/recorded/machine_observer.h"

namespace host {

/// Whether a log line, without its prefix, is the explanation's sentence and explains something.
bool Explains(const pq::Explanation& explanation, std::string_view text);

/// Notes the facts that its answer tells of a run.
void NoteAnswer(ToolRun& run, const ToolAnswer& answer);

/// Notes the facts that a log line tells of the run that it is about. `known`: its sentence, if it
/// is one of a failure. `module`: null of an unknown one.
void NoteLogLine(ToolRun& run, std::string_view text, const pq::FailureSentence* known,
                 const pq::ModuleDescription* module);

}  // namespace host
