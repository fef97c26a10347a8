// What a program that was started by a double-click needs of the desktop. Where there is none, as
// on POSIX, nothing of it happens.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace host {

/// Whether the console window was made for this program alone and closes with it, as after a
/// double-click.
bool HasOwnConsole();

/// The user's Desktop folder; empty where there is none.
std::filesystem::path FindDesktopFolder();

/// Has the desktop open a file with the user's program for it, also when this program is elevated
/// and that one must not be. False when it cannot.
bool OpenOnDesktop(const std::filesystem::path& file);

/// Starts this program once more, as administrator, in a console of its own and the same current
/// folder. False when the user or the system refused.
bool StartElevated(const std::vector<std::string>& arguments);

/// Waits until somebody has pressed Enter in the program's console.
void WaitForEnter();

}  // namespace host
