// Reads a recording and does nothing else, so that its instructions can be counted.
//   load_recording FOLDER

#include "host/recording/recording_reader.h"

int main(int, char** arguments) { host::LoadRecording(arguments[1]); }
