// The library's one exported function: hands the modules to the host.

#include "frame/add_modules.h"

#include "frame/module.h"

int AddModules(std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules) {
  for (const auto& module : pq::CreateModules()) modules.push_back(module);
  return 0;
}
