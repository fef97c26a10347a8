#include "host/answers/parts/arcconf_controller.h"

#include <string_view>
#include <utility>

#include "host/answers/parts/arcconf_config.h"
#include "host/answers/parts/arcconf_facts.h"

namespace host {

ArcconfControllerSection::ArcconfControllerSection(const std::string& id) {
  controller.id = id;
  controller.number = id.substr(kMicrochipId.size());
  controller.vendor = kMicrochip;
}

void ArcconfControllerSection::Begin(const Place& at) {
  controller.readAt = at;
  isCacheBackup = false;
}

void ArcconfControllerSection::BeginPart(const std::string& heading, const Place& at) {
  const auto has = [&](std::string_view word) { return heading.find(word) != std::string::npos; };
  // The module's parts have headings of their own.
  if (has("supercap")) return;
  isCacheBackup = has("battery") || has("zmm") || has("backup");
  if (!isCacheBackup) return;
  const std::string kind = has("battery") ? "BBU" : has("zmm") ? "ZMM" : "cache backup";
  CacheBackup backup;
  backup.id = controller.id + " " + kind;
  backup.readAt = at;
  backup.vendor = kMicrochip;
  backup.controller = controller.id;
  backup.kind = kind;
  backups.push_back(std::move(backup));
}

void ArcconfControllerSection::Take(const ArcconfLine& line) {
  if (!line.told) return;
  hasController = true;
  if (isCacheBackup) {
    LearnArcconfFact(backups.back(), *line.told, line.at);
  } else {
    LearnArcconfFact(controller, *line.told, line.at);
  }
}

bool ArcconfControllerSection::HandOver(Parts& parts) {
  for (CacheBackup& backup : backups) {
    if (!backup.state.empty()) parts.cacheBackups.push_back(std::move(backup));
  }
  if (hasController) parts.controllers.push_back(std::move(controller));
  return hasController;
}

}  // namespace host
