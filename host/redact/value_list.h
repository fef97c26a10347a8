// The values that were found in a recording, each once, with their pseudonyms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/redact/kinds.h"
#include "host/redact/pseudonyms.h"
#include "host/redact/value_matcher.h"
#include "host/text/decoder.h"

namespace host {

struct ListedValue {
  ValueKind kind = ValueKind::kHost;
  std::string text;       ///< UTF-8, as it was first found
  std::string pseudonym;  ///< in small letters
  /// It is replaced only where it was found by its place: elsewhere it may be an ordinary word or
  /// number.
  bool isOrdinary = false;
  std::uint64_t count = 0;  ///< how often it was replaced
  std::string where;        ///< the first place
};

class ValueList {
 public:
  /// `pseudonyms` must outlive this object.
  ValueList(const RedactionRules& rules, const Pseudonyms& pseudonyms, std::uint32_t codePage);

  /// Names that stay as they are, such as files that the modules look for.
  void Keep(std::string_view name);

  /// Takes a value that was found, in bytes of the machine. Returns its number; nothing when it is
  /// no secret, or of a kind that stays.
  std::optional<std::size_t> Add(ValueKind kind, std::string_view bytes);

  /// What finds and replaces all values that are no ordinary words. To be asked for once all values
  /// are known.
  ValueMatcher MakeMatcher() const;

  /// What is written over `bytes`, an occurrence of the value: as long as that, in its case.
  std::string Replacement(std::size_t number, std::string_view bytes) const;

  /// The value as pseudonyms are made of it: in small letters, of an address the digits alone.
  const std::string& KeyOf(std::size_t number) const { return keys[number]; }

  std::vector<ListedValue>& Values() { return values; }
  const std::vector<ListedValue>& Values() const { return values; }

 private:
  /// A value as the machine and UTF-8 spell it, and Latin-1, which UTF-16 has for two bytes.
  std::vector<std::string> ListSpellings(const std::string& key) const;
  bool IsOrdinary(ValueKind kind, const std::string& key) const;
  std::string MakePseudonym(ValueKind kind, const std::string& key);

  const RedactionRules rules;
  const Pseudonyms& pseudonyms;
  TextDecoder decode;
  std::set<std::string> ordinaryWords;
  std::set<std::string> keptNames;
  std::vector<ListedValue> values;
  std::vector<std::string> keys;                         ///< of the values, in small letters
  std::unordered_map<std::string, std::size_t> numbers;  ///< by key
  std::map<std::string, std::string> machineBytes;       ///< of keys beyond ASCII
  std::unordered_set<std::string> usedPseudonyms;
};

}  // namespace host
