// Options that several commands have, each said once.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/commands/common_options.h"
#include "host/commands/option_set.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"
#include "host/program/destination.h"

namespace host {

/// --module
void AddModuleOption(OptionSet& set, std::vector<std::string>& modules, const char* help);

/// --replay, and how it is read: --limit, --unverified
void AddReplay(OptionSet& set, SourceOptions& source);
/// --limit
void AddLimits(OptionSet& set, RecordingLimits& limits);
/// --limit, --unverified
void AddReadingRules(OptionSet& set, SourceOptions& source);
/// --key, of the pseudonyms
void AddRedactionKey(OptionSet& set, SourceOptions& source);
/// --log-folder
void AddLogFolder(OptionSet& set, SourceOptions& source);
/// --plugin
void AddPlugin(OptionSet& set, SourceOptions& source);

/// For commands that write no files of a recording: throws UsageError when a folder for them was
/// given.
void RefuseLogFolder(const SourceOptions& source);

/// Throws UsageError when an option was given that all live commands share, and a recording as
/// well, and for a --log-folder in the recording.
void RefuseMisuseOfReplay(const SourceOptions& source);
/// Throws UsageError when `place`, to be written, is in the recording that is replayed: whoever
/// made that may have put links there.
void RefuseInRecording(const SourceOptions& source, const char* option, const Destination& place);
/// --unsafe-folder
void AddUnsafeFolder(OptionSet& set, SourceOptions& source);

}  // namespace host
