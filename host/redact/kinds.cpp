#include "host/redact/kinds.h"

#include <algorithm>
#include <cstddef>

namespace host {
namespace {

constexpr KindRow kKinds[] = {
    {ValueKind::kPassword, "password", Profile::kAlways, "passwords, SNMP communities"},
    {ValueKind::kLogin, "login", Profile::kAlways, "accounts that tools were given"},
    {ValueKind::kMail, "mail", Profile::kSupport, "mail addresses"},
    {ValueKind::kPerson, "person", Profile::kSupport, "names of users, also in paths"},
    {ValueKind::kIpv4, "ipv4", Profile::kPublic, "IPv4 addresses"},
    {ValueKind::kIpv6, "ipv6", Profile::kPublic, "IPv6 addresses"},
    {ValueKind::kMac, "mac", Profile::kPublic, "hardware addresses of networks"},
    {ValueKind::kWwn, "wwn", Profile::kPublic, "world-wide names, SAS addresses"},
    {ValueKind::kGuid, "guid", Profile::kPublic, "GUIDs and UUIDs"},
    {ValueKind::kSerial, "serial", Profile::kPublic, "serial numbers"},
    {ValueKind::kAsset, "asset", Profile::kPublic, "asset tags"},
    {ValueKind::kHost, "host", Profile::kPublic, "names of machines and domains"},
    {ValueKind::kPath, "path", Profile::kPublic, "names of shares, folders and files"},
};

RedactionRules MakeRulesUpTo(Profile profile, std::string_view name) {
  RedactionRules rules{std::string(name), {}};
  for (const KindRow& row : kKinds) {
    if (row.profile <= profile) rules.kinds.insert(row.kind);
  }
  return rules;
}

}  // namespace

std::span<const KindRow> GetKinds() { return kKinds; }

const KindRow& DescribeKind(ValueKind kind) { return kKinds[static_cast<std::size_t>(kind)]; }

const KindRow* FindKind(std::string_view name) {
  const auto* found = std::ranges::find(kKinds, name, &KindRow::name);
  return found == std::end(kKinds) ? nullptr : found;
}

RedactionRules MakeRules(std::string_view profile) {
  return MakeRulesUpTo(profile == kSupportProfile ? Profile::kSupport : Profile::kPublic, profile);
}

RedactionRules MakeLeastRules() { return MakeRulesUpTo(Profile::kAlways, "chosen"); }

}  // namespace host
