// A machine that is short of memory.
#pragma once

namespace host {

inline constexpr char kShortOfMemory[] =
    "this machine is short of memory: end other programs, or try again later";

/// From now on a want of memory that nobody can be told of, as while another failure is explained,
/// removes the files that are not complete and ends the program with `exitCode`, saying so on
/// standard error.
void EndCleanlyWithoutMemory(int exitCode);

}  // namespace host
