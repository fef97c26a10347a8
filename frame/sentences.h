// Words that every module's log has in common. Whoever reads a log finds them by these constants.
#pragma once

namespace pq {

/// Begins every line of the plug-in.
inline constexpr char kLogPrefix[] = "[repo] ";

/// A tool that did not start, unless a step has its own words; the system error and ")" follow.
inline constexpr char kStartFailure[] = "CreateProcess failed (";
/// An exit code that cannot be read; the system error may follow.
inline constexpr char kExitCodeFailure[] = "GetExitCodeProcess() failed: ";
/// A report that does not fit into memory.
inline constexpr char kNoMemory[] = "Malloc failed!";

/// Output read through a pipe: the byte count of a chunk, and in the end the whole.
inline constexpr char kChunkSize[] = "dw:";
inline constexpr char kWholeOutput[] = "se:";

}  // namespace pq
