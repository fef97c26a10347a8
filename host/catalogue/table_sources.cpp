#include "host/catalogue/table_sources.h"

#include <algorithm>

#include "pqmodules/ramtinfo.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rsamplemodule1.h"
#include "pqmodules/rsamplemodule2.h"
#include "pqmodules/rwininfo.h"

namespace host {

const pq::TableSources& AllTableSources() {
  static const pq::TableSources sources = [] {
    pq::TableSources all;
    for (const auto describe : {&pq::RSampleModule1::DescribeTables,
                                &pq::RSampleModule2::DescribeTables, &pq::RBMCInfo::DescribeTables,
                                &pq::RAMTInfo::DescribeTables, &pq::RWINInfo::DescribeTables}) {
      for (pq::TableSource& source : describe()) all.push_back(std::move(source));
    }
    return all;
  }();
  return sources;
}

const pq::TableSource* FindTableSource(const std::string& className) {
  const pq::TableSources& all = AllTableSources();
  const auto found = std::find_if(all.begin(), all.end(), [&](const pq::TableSource& source) {
    return source.className == className;
  });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace host
