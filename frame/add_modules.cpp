// The library's one exported function: hands the five modules to the host.

#include "frame/add_modules.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <vector>

#include "pqmodules/ramtinfo.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rsamplemodule1.h"
#include "pqmodules/rsamplemodule2.h"
#include "pqmodules/rwininfo.h"

int AddModules(std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules) {
  modules.push_back(boost::make_shared<pq::RSampleModule1>());
  modules.push_back(boost::make_shared<pq::RSampleModule2>());
  modules.push_back(boost::make_shared<pq::RBMCInfo>());
  modules.push_back(boost::make_shared<pq::RAMTInfo>());
  modules.push_back(boost::make_shared<pq::RWINInfo>());
  return 0;
}
