// Where the rows of every table come from, as the modules themselves tell.
#pragma once

#include <string>

#include "frame/table_source.h"

namespace host {

/// The tables of all modules, in the order of the modules.
const pq::TableSources& AllTableSources();

/// Null for a class that no module describes.
const pq::TableSource* FindTableSource(const std::string& className);

}  // namespace host
