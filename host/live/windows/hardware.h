// The devices that Windows and the firmware list, without any tool.
#pragma once

#include "host/collect/machine_facts.h"

namespace host {

/// What is not known stays so.
Hardware FindHardware();

}  // namespace host
