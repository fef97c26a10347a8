// The section on the controller itself, whose parts tell of what keeps its cache:
//
//   Controller information
//   ----------------------------------------------------------------------
//      Controller Status                        : Optimal
//      --------------------------------------------------------
//      Cache Backup Unit Information
//      --------------------------------------------------------
//      Overall Backup Unit Status               : Ready
#pragma once

#include <string>
#include <vector>

#include "host/answers/parts/arcconf_section.h"

namespace host {

class ArcconfControllerSection : public ArcconfSection {
 public:
  /// `id` is the controller's, such as "mchp1".
  explicit ArcconfControllerSection(const std::string& id);

  void Begin(const Place& at) override;
  void BeginPart(const std::string& heading, const Place& at) override;
  void Take(const ArcconfLine& line) override;

  /// Moves the controller and its cache backups into `parts`. False when the report told no fact of
  /// a controller, which is in no list then.
  bool HandOver(Parts& parts);

 private:
  Controller controller;
  bool hasController = false;
  std::vector<CacheBackup> backups;
  bool isCacheBackup = false;  ///< the facts are those of the last of `backups`
};

}  // namespace host
