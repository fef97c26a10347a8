// Members of JSON objects as the texts and numbers that they have to be. A function that reads a
// member leaves its target alone when there is no such member. All throw MemberError.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A value is not as it has to be. what() says how it has to be.
class MemberError : public std::runtime_error {
 public:
  /// `place` is the member's, such as "commands[3].tool"; empty for the object as a whole.
  MemberError(std::string place, const std::string& words)
      : std::runtime_error(words), place(std::move(place)) {}

  const std::string& Place() const { return place; }
  /// Place and words in one line.
  std::string Explain() const { return place.empty() ? what() : place + ": " + what(); }

 private:
  std::string place;
};

/// Null when there is none.
const nlohmann::json* FindMember(const nlohmann::json& object, const char* name);

/// Null when there is no such member; refuses one that is no list.
const nlohmann::json* FindList(const nlohmann::json& object, const char* name);

/// Refuses an object without a member "format" that is kRecordingFormat.
void CheckFormat(const nlohmann::json& object);

/// Refuses every member that is not `known`.
void CheckMembers(const nlohmann::json& object, std::initializer_list<std::string_view> known);

void ReadText(const nlohmann::json& object, const char* name, std::string& text);
/// A text of the machine: each character is the byte with its number.
void ReadBytes(const nlohmann::json& object, const char* name, std::string& bytes);
/// A list of texts.
void ReadTexts(const nlohmann::json& object, const char* name, std::vector<std::string>& texts);
void ReadNumber(const nlohmann::json& object, const char* name, std::uint32_t& number);

/// The same for values that are no members.
const std::string& TextOf(const nlohmann::json& value, const std::string& place);
std::string BytesOf(const std::string& utf8, const std::string& place);

/// A value as it is in the file, for a complaint. A long one is cut.
std::string ShowValue(const nlohmann::json& value);

}  // namespace host
