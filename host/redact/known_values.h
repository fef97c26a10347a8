// Values of which a replay knows the kind, wherever they are in the texts.
#pragma once

#include "host/recorded/recording.h"
#include "host/redact/value_list.h"

namespace host {

/// Adds what the submission, the parts and the tables of a replay know to be of a kind.
void AddKnownValues(const Recording& recording, ValueList& values);

}  // namespace host
