// What a stored row costs in memory. Measured with the system's allocator, which only Linux lets a
// program ask.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "frame/halyard/repository.h"
#include "host/repository/store.h"
#include "tests/support/allocated_bytes.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using halyard::repository::RRepository;

/// Bytes that `rows` rows of `columns` texts of `length` characters take beyond their texts, per
/// row.
double BytesBeyondText(std::size_t rows, int columns, std::size_t length) {
  const std::size_t before = test::CountAllocatedBytes();
  RRepository repository;
  const std::string value(length, 'v');
  for (std::size_t i = 0; i < rows; ++i) {
    RInstance instance("SELINFO", "SEL Information", -1);
    for (int c = 0; c < columns; ++c) {
      instance.AddProperty("item" + std::to_string(c), "SEL Info", value, false);
    }
    instance.AddToRepository(repository);
  }
  EXPECT_EQ(TablesOf(repository).at("SELINFO").rows.size(), rows);
  const std::size_t text = rows * static_cast<std::size_t>(columns) * length;
  const std::size_t taken = test::CountAllocatedBytes() - before;
  EXPECT_GT(taken, text);  // else the allocator that was asked is not the one in use
  return (static_cast<double>(taken) - static_cast<double>(text)) / static_cast<double>(rows);
}

TEST(RepositoryMemory, IsUnder100BytesARowBeyondItsText) {
  EXPECT_LT(BytesBeyondText(100000, 1, 80), 100);
}

TEST(RepositoryMemory, IsUnder100BytesAlsoForARowWithoutText) {
  EXPECT_LT(BytesBeyondText(100000, 1, 0), 100);
}

TEST(RepositoryMemory, IsUnder100BytesForARowOfSeveralTexts) {
  EXPECT_LT(BytesBeyondText(50000, 5, 16), 100);
}

TEST(RepositoryMemory, OfARowDoesNotGrowWithTheTable) {
  const double few = BytesBeyondText(10000, 7, 12);
  const double many = BytesBeyondText(60000, 7, 12);
  EXPECT_LT(many, few * 1.1);
}

}  // namespace
}  // namespace host
