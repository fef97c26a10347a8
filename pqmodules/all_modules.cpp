// The modules of the library, in the order in which the host gets them. A new one is added to both
// lists here.

#include <boost/make_shared.hpp>

#include "frame/description.h"
#include "frame/module.h"
#include "pqmodules/ramtinfo.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rsamplemodule1.h"
#include "pqmodules/rsamplemodule2.h"
#include "pqmodules/rwininfo.h"

namespace pq {

ModuleList CreateModules() {
  return {boost::make_shared<RSampleModule1>(), boost::make_shared<RSampleModule2>(),
          boost::make_shared<RBMCInfo>(), boost::make_shared<RAMTInfo>(),
          boost::make_shared<RWINInfo>()};
}

std::vector<ModuleDescription> DescribeModules() {
  return {RSampleModule1::Describe(), RSampleModule2::Describe(), RBMCInfo::Describe(),
          RAMTInfo::Describe(), RWINInfo::Describe()};
}

}  // namespace pq
