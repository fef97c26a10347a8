#include "host/recording/submission_file.h"

#include <gmock/gmock.h>

#include "host/recording/recording_reader.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SubmissionFile : public testing::Test {
 protected:
  SubmissionFile() { folder.Write("recording.json", R"({"format": 1})"); }

  Recording LoadWith(const std::string& submission) {
    folder.Write("submission.json", submission);
    return LoadRecording(folder.Path());
  }
  /// The complaint about `submission`.
  std::string Complain(const std::string& submission) {
    const Recording recording = LoadWith(submission);
    EXPECT_FALSE(recording.submission) << submission;
    return recording.doubts.empty() ? "" : recording.doubts.front();
  }

  test::TemporaryFolder folder;
};

TEST_F(SubmissionFile, NeedNotBeThere) {
  const Recording recording = LoadRecording(folder.Path());
  EXPECT_FALSE(recording.submission);
  EXPECT_THAT(recording.doubts, IsEmpty());
}

TEST_F(SubmissionFile, NeedNotSayEverything) {
  const Recording recording = LoadWith(R"({"format": 1, "name": "NODE31"})");
  EXPECT_EQ(recording.submission, Submission{.name = "NODE31"});
  EXPECT_EQ(LoadWith(WriteSubmission({})).submission, Submission{});
}

TEST_F(SubmissionFile, SaysWhichMemberIsWrongAndHow) {
  const std::pair<const char*, const char*> kWrong[] = {
      {R"({})", "submission.json: format: is missing; it has to be 1"},
      {R"({"format": 2})", "submission.json: format: has to be 1, the only format there is, not 2"},
      {R"([])", "submission.json: has to be an object, { ... }"},
      {R"({"format": 1, "host": "A"})", "submission.json: there is no member \"host\"; there are "},
      {R"({"format": 1, "name": 5})", "submission.json: name: has to be a text, not 5"},
      {R"({"format": 1, "recordedAt": "today"})",
       "submission.json: recordedAt: has to be a time and its offset, such as "
       "\"2026-11-18T09:41:07+01:00\", not \"today\""},
      {R"({"format": 1, "serials": "A"})",
       "submission.json: serials: has to be a list, [ ... ], not \"A\""},
      {R"({"format": 1, "serials": ["A", 1]})",
       "submission.json: serials[1]: has to be a text, not 1"},
      {R"({"format": 1, "tools": ["storcli"]})",
       "submission.json: tools: has to be an object, { ... }, not a list"},
      {R"({"format": 1, "tools": {"storcli": 7}})",
       "submission.json: tools[\"storcli\"]: has to be a text, not 7"},
      {R"({"format": 1, "redacted": true})",
       "submission.json: redacted: has to be an object, { ... }, not true"},
      {R"({"format": 1, "redacted": {"counts": {"user": -1}}})",
       "submission.json: redacted.counts[\"user\"]: has to be a whole number, not -1"},
      {R"({"format": 1, "redacted": {"leftOut": "two"}})",
       "submission.json: redacted.leftOut: has to be a whole number, not \"two\""},
      {R"({"format": 1, "name": "A", "name": "B"})", "submission.json: line 1, column "},
      {R"({"format": 1,)", "submission.json: line 1, column "}};
  for (const auto& [text, words] : kWrong) EXPECT_THAT(Complain(text), HasSubstr(words)) << text;
}

TEST_F(SubmissionFile, DoesNotKeepARecordingFromBeingReadWhenItIsWrong) {
  folder.Write("recording.json", R"({"format": 1, "description": "hall 2"})");
  const Recording recording = LoadWith("oops");
  EXPECT_EQ(recording.description, "hall 2");
  EXPECT_THAT(recording.doubts, ElementsAre(HasSubstr("so it is not known which machine this is")));
}

TEST_F(SubmissionFile, IsShort) {
  const std::string name(64U << 10, 'A');
  EXPECT_THAT(Complain(R"({"format": 1, "name": ")" + name + "\"}"),
              HasSubstr("submission.json: has more than 64 KiB"));
}

TEST_F(SubmissionFile, ChangesNoContentKey) {
  const std::string key = LoadRecording(folder.Path()).contentKey;
  EXPECT_EQ(key.size(), 64u);
  EXPECT_EQ(LoadWith(R"({"format": 1, "name": "NODE31"})").contentKey, key);
}

}  // namespace
}  // namespace host
