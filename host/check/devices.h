// Which devices of the areas a machine has, as far as that is known without asking their tools.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "host/collect/collection.h"
#include "host/collect/machine_facts.h"

namespace host {

/// By area (host/catalogue/areas.h): whether its device is there. An area that is not there: not
/// known.
using DevicesByArea = std::map<std::string, bool>;

/// What the system itself lists.
DevicesByArea FindDevices(const Hardware& hardware);

/// What a collection found out. `isThere` answers for programs: tables of others prove nothing.
DevicesByArea FindDevices(const Collection& collection,
                          const std::function<bool(const std::string& program)>& isThere);

/// The classes of tables that a collection did not ask for, because of the platform family.
std::set<std::string> FindNeverAsked(const Collection& collection);

}  // namespace host
