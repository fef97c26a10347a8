// Who answers the AMT module, as the command line has it.
#pragma once

#include "host/live/login_prompt.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

/// `console` has to outlive the prompt. Throws UsageError when the file of --amt-login cannot be
/// read, or is not this user's alone.
LoginPrompt MakeLoginPrompt(const SourceOptions& options, const Console& console);

}  // namespace host
