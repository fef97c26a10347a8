#include "host/files/gzip.h"

#include <gmock/gmock.h>

#include <deque>
#include <stdexcept>
#include <string>

namespace host {
namespace {

constexpr std::size_t kEnough = std::size_t{1} << 30;

/// Text that packs well, larger than any buffer.
std::string MakeText() {
  std::string text;
  for (unsigned i = 0; i < 50000; ++i) text += std::to_string(i * i) + "\n";
  return text;
}

std::string Pack(const std::string& bytes, std::size_t most = kEnough) {
  GzipStream stream(most);
  stream << bytes;
  return stream.Take();
}

TEST(Gzip, GivesBackWhatWasPacked) {
  for (const std::string& text : {std::string(), std::string("a\0b", 3), MakeText()}) {
    EXPECT_EQ(UnpackGzip(Pack(text), kEnough), text);
  }
}

TEST(Gzip, IsSmallerAndWhatOthersUnpack) {
  const std::string packed = Pack(MakeText());
  EXPECT_LT(packed.size(), MakeText().size() / 2);
  EXPECT_EQ(packed.substr(0, 3), "\x1F\x8B\x08");
}

TEST(Gzip, KeepsNothingThatIsTooLarge) {
  const std::string packed = Pack(MakeText());
  EXPECT_EQ(Pack(MakeText(), packed.size()), packed);
  EXPECT_EQ(Pack(MakeText(), packed.size() - 1), "");
}

TEST(Gzip, GivesTheSameInPiecesThatThreeDivides) {
  GzipStream stream(kEnough);
  stream << MakeText();
  const std::deque<std::string> pieces = stream.TakePieces();
  ASSERT_GT(pieces.size(), 1U);
  std::string whole;
  for (const std::string& piece : pieces) {
    EXPECT_EQ(whole.size() % 3, 0U);
    whole += piece;
  }
  EXPECT_EQ(whole, Pack(MakeText()));
}

TEST(Gzip, RefusesWhatIsNotWhole) {
  const std::string packed = Pack(MakeText());
  constexpr std::size_t kSteps = 50;
  for (std::size_t step = 0; step < kSteps; ++step) {
    const std::string cut = packed.substr(0, packed.size() * step / kSteps);
    EXPECT_THROW(UnpackGzip(cut, kEnough), std::runtime_error) << step;
  }
  std::string changed = packed;
  changed[changed.size() / 2] = static_cast<char>(changed[changed.size() / 2] ^ 1);
  EXPECT_THROW(UnpackGzip(changed, kEnough), std::runtime_error);
  EXPECT_THROW(UnpackGzip(packed + "x", kEnough), std::runtime_error);
}

TEST(Gzip, RefusesMoreThanItMayUnpack) {
  EXPECT_THROW(UnpackGzip(Pack(MakeText()), MakeText().size() - 1), std::runtime_error);
}

}  // namespace
}  // namespace host
