#include "host/program/desktop.h"

namespace host {

bool HasOwnConsole() { return false; }

std::filesystem::path FindDesktopFolder() { return {}; }

bool OpenOnDesktop(const std::filesystem::path& /*file*/) { return false; }

bool StartElevated(const std::vector<std::string>& /*arguments*/) { return false; }

void WaitForEnter() {}

}  // namespace host
