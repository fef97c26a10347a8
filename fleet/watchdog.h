// Tells the service manager that this process still goes on (sd_notify(3), WatchdogSec=).
#pragma once

namespace fleet {

/// Nothing where nobody asks for it (NOTIFY_SOCKET).
void TellAlive() noexcept;

}  // namespace fleet
