#include "tests/support/samples.h"

#include <filesystem>
#include <new>
#include <sstream>

#include "host/collect/collect.h"
#include "host/collect/trace.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"

namespace test {

std::map<std::string, host::Recording> LoadSamples() {
  std::map<std::string, host::Recording> samples;
  for (const auto& folder : std::filesystem::directory_iterator(SamplesFolder())) {
    samples[folder.path().filename().string()] = host::LoadRecording(folder.path());
  }
  return samples;
}

std::string CollectTrace(const host::Recording& recording) {
  std::ostringstream text;
  host::TraceWriter trace(text);
  host::Collect(recording, {}, trace);
  if (!text) throw std::bad_alloc();  // the only reason for a stream in memory
  return std::move(text).str();
}

}  // namespace test
