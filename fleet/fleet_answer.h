// Answers of the database as collections of one table, for pqhost's formats.
#pragma once

#include <string>

#include "fleet/database.h"
#include "host/collect/collection.h"

namespace fleet {

/// `question` is told as what was asked.
host::Collection MakeCollection(const Answer& answer, const std::string& question);

}  // namespace fleet
