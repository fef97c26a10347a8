#include "host/recording/submission_file.h"

#include <cstdint>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/recording/json_members.h"
#include "host/recording/recording_format.h"
#include "host/recording/strict_json.h"

namespace host {
namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

/// A few names and numbers; what is longer is something else.
constexpr std::uint64_t kMostBytes = std::uint64_t{64} << 10;

void CheckSubmissionSize(std::uint64_t bytes) {
  if (bytes <= kMostBytes) return;
  throw std::runtime_error("has more than " + std::to_string(kMostBytes >> 10) + " KiB");
}

const Json* FindObject(const Json& object, const char* name) {
  const Json* member = FindMember(object, name);
  if (member != nullptr && !member->is_object()) {
    throw MemberError(name, "has to be an object, { ... }, not " + ShowValue(*member));
  }
  return member;
}

std::optional<LocalTime> ReadTime(const Json& all) {
  constexpr char kName[] = "recordedAt";
  const Json* value = FindMember(all, kName);
  if (value == nullptr) return std::nullopt;
  const std::optional<LocalTime> time = ParseIsoTime(TextOf(*value, kName));
  if (!time) {
    throw MemberError(kName,
                      "has to be a time and its offset, such as "
                      "\"2026-11-18T09:41:07+01:00\", not " +
                          ShowValue(*value));
  }
  return time;
}

std::optional<Redaction> ReadRedaction(const Json& all) {
  const Json* redacted = FindObject(all, "redacted");
  if (redacted == nullptr) return std::nullopt;
  CheckMembers(*redacted, {"profile", "counts", "leftOut"});
  Redaction redaction;
  ReadText(*redacted, "profile", redaction.profile);
  if (const Json* counts = FindObject(*redacted, "counts")) {
    for (const auto& [name, value] : counts->items()) {
      if (!value.is_number_unsigned()) {
        throw MemberError("redacted.counts[" + QuoteText(name) + "]",
                          "has to be a whole number, not " + ShowValue(value));
      }
      redaction.counts[name] = value.get<std::uint64_t>();
    }
  }
  if (const Json* leftOut = FindMember(*redacted, "leftOut")) {
    if (!leftOut->is_number_unsigned()) {
      throw MemberError("redacted.leftOut", "has to be a whole number, not " + ShowValue(*leftOut));
    }
    redaction.leftOut = leftOut->get<std::uint64_t>();
  }
  return redaction;
}

Submission ParseSubmission(std::string_view text) {
  const Json all = ReadStrictJson(text, "", [](const Json& /*element*/) {});
  if (!all.is_object()) throw MemberError("", "has to be an object, { ... }");
  CheckFormat(all);
  CheckMembers(
      all, {"format", "name", "recordedAt", "system", "serials", "program", "tools", "redacted"});
  Submission submission;
  ReadText(all, "name", submission.name);
  submission.recordedAt = ReadTime(all);
  ReadText(all, "system", submission.system);
  ReadTexts(all, "serials", submission.serials);
  ReadText(all, "program", submission.program);
  if (const Json* tools = FindObject(all, "tools")) {
    for (const auto& [name, version] : tools->items()) {
      submission.tools[name] = TextOf(version, "tools[" + QuoteText(name) + "]");
    }
  }
  submission.redacted = ReadRedaction(all);
  return submission;
}

}  // namespace

std::optional<Submission> ReadSubmission(const StoredFiles& files) {
  if (!files.Has(kSubmissionFileName)) return std::nullopt;
  const std::string start = std::string(kSubmissionFileName) + ": ";
  try {
    return ParseSubmission(files.Read(kSubmissionFileName, &CheckSubmissionSize));
  } catch (const MemberError& problem) {
    throw std::runtime_error(start + problem.Explain());
  } catch (const std::runtime_error& problem) {
    throw std::runtime_error(start + problem.what());
  }
}

std::string WriteSubmission(const Submission& submission) {
  OrderedJson all{{"format", kRecordingFormat}};
  if (!submission.name.empty()) all["name"] = submission.name;
  if (submission.recordedAt) all["recordedAt"] = FormatIsoTime(*submission.recordedAt);
  if (!submission.system.empty()) all["system"] = submission.system;
  if (!submission.serials.empty()) all["serials"] = submission.serials;
  if (!submission.program.empty()) all["program"] = submission.program;
  if (!submission.tools.empty()) all["tools"] = submission.tools;
  if (submission.redacted) {
    all["redacted"] = {{"profile", submission.redacted->profile},
                       {"counts", submission.redacted->counts}};
    if (submission.redacted->leftOut > 0) {
      all["redacted"]["leftOut"] = submission.redacted->leftOut;
    }
  }
  return all.dump(2, ' ', /*ensure_ascii=*/false, OrderedJson::error_handler_t::replace) + "\n";
}

}  // namespace host
