#include "host/program/short_of_memory.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "host/files/partial_file.h"

namespace host {
namespace {

int exitCodeWithoutMemory = 1;
std::terminate_handler usualEnd = nullptr;

/// Asks for no memory.
void OnTerminate() {
  try {
    if (std::current_exception()) throw;
  } catch (const std::bad_alloc&) {
    RemovePartialFiles();
    for (const char* text : {"pqhost: ", kShortOfMemory, "\n"}) std::fputs(text, stderr);
    std::_Exit(exitCodeWithoutMemory);
  } catch (...) {
    // A fault of the program, which the usual end tells.
  }
  usualEnd();
}

}  // namespace

void EndCleanlyWithoutMemory(int exitCode) {
  exitCodeWithoutMemory = exitCode;
  const std::terminate_handler before = std::set_terminate(&OnTerminate);
  if (before != &OnTerminate) usualEnd = before;
}

}  // namespace host
