#include "host/recording/json_members.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>

#include "host/recording/recording_format.h"
#include "host/recording/strict_json.h"

namespace host {
namespace {

using Json = nlohmann::json;

constexpr std::uint64_t kLargestNumber = 0xFFFFFFFF;
constexpr std::size_t kShownLimit = 160;

std::ptrdiff_t CountCharacters(const std::string& utf8, std::size_t end) {
  return std::count_if(utf8.begin(), utf8.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
}

}  // namespace

const Json* FindMember(const Json& object, const char* name) {
  const auto member = object.find(name);
  return member == object.end() ? nullptr : &*member;
}

void CheckFormat(const Json& all) {
  const Json* format = FindMember(all, "format");
  if (format == nullptr) throw MemberError("format", "is missing; it has to be 1");
  if (!format->is_number_integer() || *format != kRecordingFormat) {
    throw MemberError("format", "has to be 1, the only format there is, not " + ShowValue(*format));
  }
}

void CheckMembers(const Json& object, std::initializer_list<std::string_view> known) {
  for (const auto& [name, value] : object.items()) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    std::string all;
    for (const std::string_view member : known) {
      all.append(all.empty() ? "" : ", ").append(member);
    }
    throw MemberError("", "there is no member " + QuoteText(name) + "; there are " + all);
  }
}

void ReadText(const Json& object, const char* name, std::string& text) {
  if (const Json* value = FindMember(object, name)) text = TextOf(*value, name);
}

void ReadBytes(const Json& object, const char* name, std::string& bytes) {
  if (const Json* value = FindMember(object, name)) bytes = BytesOf(TextOf(*value, name), name);
}

const Json* FindList(const Json& object, const char* name) {
  const Json* list = FindMember(object, name);
  if (list != nullptr && !list->is_array()) {
    throw MemberError(name, "has to be a list, [ ... ], not " + ShowValue(*list));
  }
  return list;
}

void ReadTexts(const Json& object, const char* name, std::vector<std::string>& texts) {
  const Json* list = FindList(object, name);
  if (list == nullptr) return;
  for (const Json& entry : *list) {
    const std::string place = name + ("[" + std::to_string(texts.size()) + "]");
    texts.push_back(TextOf(entry, place));
  }
}

void ReadNumber(const Json& object, const char* name, std::uint32_t& number) {
  const Json* value = FindMember(object, name);
  if (value == nullptr) return;
  if (!value->is_number_unsigned() || value->get<std::uint64_t>() > kLargestNumber) {
    throw MemberError(name,
                      "has to be a whole number from 0 to 4294967295, not " + ShowValue(*value));
  }
  number = value->get<std::uint32_t>();
}

const std::string& TextOf(const Json& value, const std::string& place) {
  if (!value.is_string()) throw MemberError(place, "has to be a text, not " + ShowValue(value));
  return value.get_ref<const std::string&>();
}

std::string BytesOf(const std::string& utf8, const std::string& place) {
  std::string bytes;
  bytes.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
    } else if (lead < 0xC4) {
      const auto trail = static_cast<unsigned char>(utf8[++i]);
      bytes += static_cast<char>(((lead & 0x03) << 6) | (trail & 0x3F));
    } else {
      throw MemberError(
          place, "character " + std::to_string(CountCharacters(utf8, i) + 1) +
                     " is above U+00FF; each character stands for one byte, U+0000 to U+00FF");
    }
  }
  return bytes;
}

std::string ShowValue(const Json& value) {
  if (value.is_object()) return "an object";
  if (value.is_array()) return "a list";
  std::string text = value.dump(-1, ' ', /*ensure_ascii=*/true, Json::error_handler_t::replace);
  return text.size() > kShownLimit ? text.substr(0, kShownLimit) + "..." : text;
}

}  // namespace host
