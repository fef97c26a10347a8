#include "host/redact/searchable_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/samples.h"

namespace host {
namespace {

using std::string_literals::operator""s;

constexpr std::uint32_t kWestern = 1252;

TEST(SearchableText, IsWhatToolsPrint) {
  for (const auto& [name, recording] : test::LoadSamples()) {
    if (name == "hostile") continue;
    for (const RecordedCommand& command : recording.commands) {
      EXPECT_TRUE(IsSearchable(command.standardOutput, recording.codePage)) << name;
    }
    for (const auto& [path, bytes] : recording.files) {
      EXPECT_TRUE(IsSearchable(bytes, recording.codePage)) << name << path;
    }
  }
  EXPECT_TRUE(IsSearchable("", kWestern));
  EXPECT_TRUE(IsSearchable("\xff\xfeN\0o\0d\0e\0"s, kWestern));
  EXPECT_TRUE(IsSearchable("Serial: N\0o\0d\0e\0003\0001\0\r\n"s, kWestern));
}

TEST(SearchableText, IsNotWhatMayHideAValue) {
  EXPECT_FALSE(IsSearchable("PK\x03\x04 and so on", kWestern));
  EXPECT_FALSE(IsSearchable("\x1f\x8b\x08", kWestern));
  EXPECT_FALSE(IsSearchable("MZ\x90", kWestern));
  std::string noise;
  for (int i = 0; i < 4000; ++i) noise += static_cast<char>(i * 7919 >> 3);
  EXPECT_FALSE(IsSearchable(noise, kWestern));
  EXPECT_FALSE(IsSearchable("\xff\xfe\x1f\x04\x40\x04\x38\x04"s, kWestern)) << "UTF-16 of Cyrillic";
  std::string wide;
  for (const char c : "This is UTF-32."s) wide += c + "\0\0\0"s;
  EXPECT_FALSE(IsSearchable(wide, kWestern));
  EXPECT_FALSE(
      IsSearchable("\xc8\x85\x93\x93\x96\x40\xa6\x96\x99\x93\x84\x40\xc8\x85\x93\x93", kWestern))
      << "EBCDIC";
}

}  // namespace
}  // namespace host
