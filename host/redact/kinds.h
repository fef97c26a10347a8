// The kinds of values that are replaced before a recording is passed on, and the profiles that ask
// for them.
#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>

namespace host {

/// The first of two kinds is the one of a value that was found as both.
enum class ValueKind {
  kPassword,
  kLogin,
  kMail,
  kPerson,
  kIpv4,
  kIpv6,
  kMac,
  kWwn,
  kGuid,
  kSerial,
  kAsset,
  kHost,
  kPath,
};

/// The profile from which on a kind is replaced.
enum class Profile { kAlways, kSupport, kPublic };

struct KindRow {
  ValueKind kind;
  std::string_view name;  ///< for --kind, counts and previews
  Profile profile;
  std::string_view description;
};

/// All kinds, in the order of ValueKind.
std::span<const KindRow> GetKinds();
const KindRow& DescribeKind(ValueKind kind);
/// Null when there is no kind of that name.
const KindRow* FindKind(std::string_view name);

/// What is replaced.
struct RedactionRules {
  std::string profile;  ///< its name, for whoever gets the recording
  std::set<ValueKind> kinds;
};

inline constexpr std::string_view kSupportProfile = "support";
inline constexpr std::string_view kPublicProfile = "public";

/// The kinds that `profile` replaces.
RedactionRules MakeRules(std::string_view profile);
/// Those that are always replaced, and no other.
RedactionRules MakeLeastRules();

}  // namespace host
