// Any recording is the same machine after it was written and read again.
#include <gtest/gtest.h>

#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(WrittenRandomRecordings, GiveTheTracesOfWhatWasWritten) {
  constexpr std::uint64_t kEnd = PQ_HAS_ADDRESS_SANITIZER ? 1010 : 1060;
  for (std::uint64_t seed = 1000; seed < kEnd; ++seed) {
    const Recording recording = test::MakeRandomRecording(seed);
    const test::TemporaryFolder folder;
    WriteRecording(recording, folder.Path());
    const Recording read = LoadRecording(folder.Path());
    EXPECT_EQ(read.commands, recording.commands) << seed;
    EXPECT_EQ(read.files, recording.files) << seed;
    EXPECT_EQ(test::CollectTrace(read) == test::CollectTrace(recording), true) << seed;
  }
}

}  // namespace
}  // namespace host
