#include "host/redact/pseudonyms.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "host/text/decoder.h"

namespace host {
namespace {

constexpr int kRounds = 8;
constexpr char kHexAlphabet[] = "0123456789abcdef";
constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz";

/// A character that changes, as one of an alphabet.
struct CharacterPlace {
  std::size_t at;  ///< in the text
  std::string_view alphabet;
  int number;  ///< of the character in the alphabet
};

/// Random numbers that depend on the key and on a text alone.
class KeyedNumbers {
 public:
  KeyedNumbers(const HmacSha256& code, std::string text) : code(code), text(std::move(text)) {}

  /// Below `limit`, which is at most 256.
  int Take(int limit) {
    if (at == bytes.size()) {
      bytes = code.Compute(std::to_string(block++).append("/").append(text));
      at = 0;
    }
    const auto high = static_cast<unsigned char>(bytes[at]);
    const auto low = static_cast<unsigned char>(bytes[at + 1]);
    at += 2;
    return (high << 8 | low) % limit;
  }

 private:
  const HmacSha256& code;
  std::string text;
  Sha256Digest bytes{};
  std::size_t at = bytes.size();
  int block = 0;
};

/// A Feistel network over the places: each round adds to one half what the key makes of the other.
class Permutation {
 public:
  Permutation(const HmacSha256& code, std::string tweak) : code(code), tweak(std::move(tweak)) {}

  /// Turns the first place by one between a permutation and its inverse: such a permutation leaves
  /// no text as it is.
  void Apply(std::vector<CharacterPlace>& places) const {
    if (places.empty()) return;
    for (int round = 0; round < kRounds; ++round) Mix(places, round, 1);
    Turn(places.front(), 1);
    for (int round = kRounds; round > 0; --round) Mix(places, round - 1, -1);
  }

 private:
  static void Turn(CharacterPlace& place, int by) {
    const int size = static_cast<int>(place.alphabet.size());
    place.number = ((place.number + by) % size + size) % size;
  }

  void Mix(std::vector<CharacterPlace>& places, int round, int sign) const {
    const auto middle = places.begin() + static_cast<std::ptrdiff_t>(places.size() / 2);
    const bool isFirst = round % 2 == 0;
    std::string other = std::to_string(round).append("/").append(tweak).append("/");
    for (auto place = isFirst ? middle : places.begin(); place != (isFirst ? places.end() : middle);
         ++place) {
      other += static_cast<char>(place->number);
    }
    KeyedNumbers numbers(code, std::move(other));
    for (auto place = isFirst ? places.begin() : middle; place != (isFirst ? middle : places.end());
         ++place) {
      Turn(*place, sign * numbers.Take(static_cast<int>(place->alphabet.size())));
    }
  }

  const HmacSha256& code;
  std::string tweak;
};

bool IsDigit(char32_t c) { return c >= '0' && c <= '9'; }
bool IsSmallLetter(char32_t c) { return c >= 'a' && c <= 'z'; }

/// `digits` with all but the first `kept` replaced, and those at `fixed`.
std::string PermuteHex(const HmacSha256& code, std::string tweak, std::string digits,
                       std::size_t kept, std::initializer_list<std::size_t> fixed = {}) {
  std::vector<CharacterPlace> places;
  tweak += '/';
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t number = std::string_view(kHexAlphabet).find(digits[i]);
    const bool stays =
        i < kept || number == std::string_view::npos || std::ranges::find(fixed, i) != fixed.end();
    if (stays) {
      tweak += digits[i];
    } else {
      places.push_back({i, kHexAlphabet, static_cast<int>(number)});
    }
  }
  Permutation(code, std::move(tweak)).Apply(places);
  for (const CharacterPlace& place : places) {
    digits[place.at] = place.alphabet[static_cast<std::size_t>(place.number)];
  }
  return digits;
}

std::string PermuteText(const HmacSha256& code, std::string tweak, std::string_view value) {
  std::string text;
  std::vector<CharacterPlace> places;
  while (!value.empty()) {
    const char32_t c = TakeUtf8(value);
    const std::size_t at = text.size();
    if (IsDigit(c)) {
      places.push_back({at, std::string_view(kHexAlphabet, 10), static_cast<int>(c - '0')});
    } else if (IsSmallLetter(c)) {
      places.push_back({at, kLetters, static_cast<int>(c - 'a')});
    } else if (c >= 0x80) {
      // There is no one alphabet for them; the tweak keeps them apart.
      places.push_back({at, kLetters, static_cast<int>(c % (sizeof(kLetters) - 1))});
      AppendUtf8(tweak, c);
    }
    text += c < 0x80 ? static_cast<char>(c) : '?';
  }
  Permutation(code, std::move(tweak)).Apply(places);
  for (const CharacterPlace& place : places) {
    text[place.at] = place.alphabet[static_cast<std::size_t>(place.number)];
  }
  return text;
}

/// Networks that mean something by themselves: a first octet, and the second ones that belong.
struct KnownNetwork {
  int first;
  int lowest;
  int highest;
};
constexpr KnownNetwork kKnownNetworks[] = {
    {10, 0, 255}, {100, 64, 127}, {169, 254, 254}, {172, 16, 31}, {192, 168, 168}};

const KnownNetwork* FindKnownNetwork(int first) {
  const auto* found = std::ranges::find(kKnownNetworks, first, &KnownNetwork::first);
  return found == std::end(kKnownNetworks) ? nullptr : found;
}

/// Whether `one` may become `other` as the octet number `at`, after `first`: a private network
/// stays private, and the width of a column what it is.
bool AreAlike(std::size_t at, int first, int one, int other) {
  const auto width = [](int octet) { return octet < 10 ? 1 : octet < 100 ? 2 : 3; };
  const auto isEnd = [](int octet) { return octet == 0 || octet == 255; };
  if (isEnd(one) || isEnd(other) || width(one) != width(other)) return one == other;
  if (at == 0) {
    constexpr int kFirstMulticast = 224;
    const bool stays = FindKnownNetwork(one) != nullptr || FindKnownNetwork(other) != nullptr ||
                       one == 127 || other == 127;
    return stays ? one == other : other < kFirstMulticast;
  }
  const KnownNetwork* network = at == 1 ? FindKnownNetwork(first) : nullptr;
  if (network == nullptr) return true;
  const auto isIn = [&](int octet) {
    return octet >= network->lowest && octet <= network->highest;
  };
  return isIn(one) == isIn(other);
}

/// The next after `octet` in the order that `numbers` give to all like it.
int TurnOctet(const OctetNumbers& numbers, std::size_t at, int first, int octet) {
  using Place = std::pair<int, int>;
  const auto placeOf = [&](int one) { return Place(numbers[static_cast<std::size_t>(one)], one); };
  const Place own = placeOf(octet);
  Place lowest = own;
  std::optional<Place> next;
  for (int other = 0; other <= 255; ++other) {
    if (!AreAlike(at, first, octet, other)) continue;
    const Place place = placeOf(other);
    lowest = std::min(lowest, place);
    if (place > own && (!next || place < *next)) next = place;
  }
  return next.value_or(lowest).second;
}

}  // namespace

std::string Pseudonyms::Make(ValueKind kind, std::string_view value, int attempt) const {
  switch (kind) {
    case ValueKind::kPassword:
      return std::string(value.size(), '*');
    case ValueKind::kIpv4:
      return MakeIpv4(value);
    case ValueKind::kIpv6:
      return MakeIpv6(value);
    case ValueKind::kMac:
      // The maker's bytes stay: they name no machine.
      return PermuteHex(code, "mac", std::string(value), 6);
    case ValueKind::kWwn:
      return PermuteHex(code, "wwn", std::string(value),
                        value.starts_with('5') || value.starts_with('6') ? 7 : 0);
    case ValueKind::kGuid:
      // Version and variant.
      return PermuteHex(code, "guid", std::string(value), 0, {12, 16});
    default:
      return PermuteText(code, attempt == 0 ? "text/" : fmt::format("text{}/", attempt), value);
  }
}

const OctetNumbers& Pseudonyms::NumberOctets(const std::string& network) const {
  constexpr std::size_t kMostKept = 4096;
  if (octetNumbers.size() >= kMostKept) octetNumbers.clear();
  const auto [known, isNew] = octetNumbers.try_emplace(network);
  if (isNew) {
    KeyedNumbers numbers(code, "ipv4/" + network);
    for (std::uint16_t& number : known->second) {
      const int high = numbers.Take(256);
      number = static_cast<std::uint16_t>(high << 8 | numbers.Take(256));
    }
  }
  return known->second;
}

// Octet by octet, each in an order that depends on those before it: addresses of one network have
// pseudonyms of one network.
std::string Pseudonyms::MakeIpv4(std::string_view value) const {
  std::string prefix;
  std::string pseudonym;
  int first = 0;
  for (std::size_t at = 0; at < 4; ++at) {
    const std::string_view part = value.substr(0, value.find('.'));
    value.remove_prefix(std::min(part.size() + 1, value.size()));
    int octet = 0;
    for (const char c : part) octet = octet * 10 + (c - '0');
    if (at == 0) first = octet;
    const int turned = TurnOctet(NumberOctets(prefix), at, first, octet);
    pseudonym += fmt::format("{}{}", at == 0 ? "" : ".", turned);
    prefix += fmt::format("{}.", octet);
  }
  return pseudonym;
}

// Group by group alike. The first digit of the first group tells what kind of address it is; of
// local ones the first two do, and all of fe80.
std::string Pseudonyms::MakeIpv6(std::string_view value) const {
  std::string prefix;
  std::string pseudonym;
  bool isFirst = true;
  while (!value.empty()) {
    const std::size_t end = std::min(value.find(':'), value.size());
    const std::string_view group = value.substr(0, end);
    if (group.find('.') != std::string_view::npos) return pseudonym.append(MakeIpv4(group));
    const std::size_t zeros = std::min(group.find_first_not_of('0'), group.size());
    const std::string digits(group.substr(zeros));
    pseudonym.append(zeros, '0');
    if (!digits.empty() && !(isFirst && digits == "fe80")) {
      const std::size_t kept = !isFirst ? 0 : digits.starts_with('f') ? 2 : 1;
      std::string turned = PermuteHex(code, "ipv6/" + prefix, digits, kept);
      // A leading zero would make it shorter; the order then goes on.
      while (turned.starts_with('0') || turned == digits) {
        if (digits.size() <= kept) break;
        turned = PermuteHex(code, std::string("ipv6/").append(prefix), turned, kept);
      }
      pseudonym += turned;
    } else {
      pseudonym += digits;
    }
    prefix.append(digits).append(":");
    if (end < value.size()) pseudonym += ':';
    value.remove_prefix(std::min(end + 1, value.size()));
    isFirst = false;
  }
  return pseudonym;
}

}  // namespace host
