#include <cstdio>
#include <exception>

#include "host/pqhost/recording_file.h"

// Checks a recording.
int main(int argc, char** argv) {
  try {
    if (argc != 2) throw host::RecordingError("one argument is needed: the folder of a recording");
    host::LoadRecording(argv[1]);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 2;
  }
}
