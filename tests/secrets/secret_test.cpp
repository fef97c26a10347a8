// Secrets leave nothing in the memory that they used.

#include "host/secrets/secret.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace host {
namespace {

/// A secret in memory that outlives it, so that a test can look at what it left there. Short ones
/// are in the object itself.
class SecretInMemory {
 public:
  explicit SecretInMemory(const char* text) : secret(new (memory) Secret(text)) {}
  SecretInMemory(const SecretInMemory&) = delete;
  SecretInMemory& operator=(const SecretInMemory&) = delete;
  ~SecretInMemory() { End(); }

  Secret& Get() { return *secret; }
  void End() {
    if (secret != nullptr) std::exchange(secret, nullptr)->~Secret();
  }
  bool Holds(const std::string& text) const {
    return std::string(reinterpret_cast<const char*>(memory), sizeof(memory)).find(text) !=
           std::string::npos;
  }

 private:
  alignas(Secret) std::byte memory[sizeof(Secret)] = {};
  Secret* secret;
};

TEST(Secrets, LeaveNothingWhenTheyEnd) {
  SecretInMemory memory("Lantern-52");
  ASSERT_TRUE(memory.Holds("Lantern-52"));
  memory.End();
  EXPECT_FALSE(memory.Holds("antern"));
}

TEST(Secrets, LeaveNothingWhereTheyMovedFrom) {
  SecretInMemory memory("Lantern-52");
  const Secret moved = std::move(memory.Get());
  EXPECT_EQ(moved.View(), "Lantern-52");
  EXPECT_FALSE(memory.Holds("antern"));
  SecretInMemory assigned("Harbour-9");
  Secret other;
  other = std::move(assigned.Get());
  EXPECT_EQ(other.View(), "Harbour-9");
  EXPECT_FALSE(assigned.Holds("arbour"));
}

TEST(Secrets, LeaveNothingInTheObjectWhenTheyGrowOutOfIt) {
  SecretInMemory memory("Lantern-52");
  memory.Get().Append(std::string(100, 'x'));
  EXPECT_EQ(memory.Get().View(), "Lantern-52" + std::string(100, 'x'));
  EXPECT_FALSE(memory.Holds("antern"));
}

TEST(Secrets, OverwriteWhatIsShorterNow) {
  std::string text(64, 'x');
  const char* const kept = text.data();
  Wipe(text);
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.data(), kept);
  for (std::size_t i = 0; i < 64; ++i) EXPECT_EQ(kept[i], '\0') << i;
}

TEST(Secrets, AreCopiedWhole) {
  const Secret secret("Lantern-52");
  Secret copy = secret;
  EXPECT_EQ(copy, secret);
  copy.Clear();
  EXPECT_EQ(copy.View(), "");
  EXPECT_EQ(secret.View(), "Lantern-52");
}

}  // namespace
}  // namespace host
