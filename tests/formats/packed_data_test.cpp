// The JSON document in a report.
#include "host/formats/packed_data.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>

#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;
using testing::HasSubstr;

constexpr std::size_t kEnough = std::size_t{1} << 30;

TEST(PackedData, IsTheDocumentThatTheFormatJsonWrites) {
  MadeCollection made;
  made.Table("T").Row({{"</script>", "<!--"}}).FileRow("text", "name");
  EXPECT_EQ(UnpackData(made.As("html"), kEnough), made.As("json"));
}

TEST(PackedData, IsThereForAnAnswerToo) {
  MadeCollection made;
  made.Table("T").Row({{"a", "b"}});
  made.Get().machineIsKnown = false;
  EXPECT_EQ(UnpackData(made.As("html"), kEnough), made.As("json"));
}

// A tool may print all that a report has in it.
TEST(PackedData, IsNotWhatATableHolds) {
  MadeCollection made;
  made.Table("T").Row({{"a", std::string(kPackedDataHead) + "AAAA</script>"}});
  EXPECT_EQ(UnpackData(made.As("html"), kEnough), made.As("json"));
}

std::string WhyNot(const std::string& html) {
  try {
    UnpackData(html, kEnough);
    return {};
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(PackedData, IsRefusedWhenItIsNotThereOrDamaged) {
  const std::string head(kPackedDataHead);
  EXPECT_EQ(WhyNot("<html></html>"), "has no data of a collection in it");
  EXPECT_EQ(WhyNot(head + "</script>"), "was too large to carry its data: take the recording");
  for (const char* data : {"AAAA</script>", "AAAA", "?</script>"}) {
    EXPECT_THAT(WhyNot(head + data), HasSubstr("damaged or not whole")) << data;
  }
}

}  // namespace
}  // namespace host
