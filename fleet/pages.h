// The pages of the fleet, made on the server: no scripts. All that is shown of a recording is a
// stranger's text.
#pragma once

#include <map>
#include <string>

#include "fleet/database.h"

namespace fleet {

/// What follows the question mark of an address, decoded.
using PageWords = std::map<std::string, std::string>;

struct Page {
  int status = 200;
  std::string html;
};

/// The page at `path`, such as "/drives". `connection` is in a transaction that only reads, as one
/// who may read the views. Throws DatabaseFailure.
Page MakePage(const std::string& path, const PageWords& words, Connection& connection);

/// A page that says why there is no other.
Page MakeErrorPage(int status, const std::string& text);

/// What the pages look like: pqhost's report, and a little more.
std::string GetPageStyle();

}  // namespace fleet
