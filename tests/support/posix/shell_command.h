// Programs that a test starts.
#pragma once

#include <filesystem>
#include <string>

namespace test {

/// What a shell's command line writes to standard output. Throws std::runtime_error with it when
/// the command fails.
std::string RunShellCommand(const std::string& line);

/// A program of the build, beside the tests that run.
std::filesystem::path FindBuiltProgram(const std::string& name);

}  // namespace test
