// The six queries of the controller's own data, and the text pieces of their answers: screening the
// utility's error texts, joining the self-test's two lines, pairing names with values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "frame/description.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/collection.h"

namespace pq {

/// Whether the utility reports an error anywhere in its output. The output ends at its first NUL.
bool HasOemErrorText(std::string_view output);

/// Where the lines of a self-test end.
struct CarriageReturns {
  std::size_t count = 0;
  std::size_t position = 0;  ///< of the first one that is not at 0; 0 without any
};

/// Looks at all bytes, after a NUL too.
CarriageReturns FindCarriageReturns(std::string_view bytes);

/// Blanks out the first line end of an output that has exactly two, so that its two lines are one.
void JoinTwoLines(std::string& output, const CarriageReturns& found);

struct NamedValue {
  std::string_view name;
  std::string_view value;
};

/// The names and values of an output, by turns.
TokenScan ScanPairs(std::string_view output);
/// The next two; the last name may lack its value. False after the last.
bool NextPair(TokenScan& tokens, NamedValue& pair);

/// Selectors of the queries, named after their subjects.
enum OemSelector {
  kControllerQuery = 1,
  kSelfTestQuery,
  kVersionQuery,
  kPowerSupplyQuery,
  kLanQuery,
  kLedQuery,
};

/// Adds the rows of the query `selector`; any other selector runs nothing. Returns 0 after the last
/// row, 1 after a failure or when nothing was added.
int QueryOem(BmcCollection& collection, int selector);

void DescribeOemQueries(ModuleDescription& module);

}  // namespace pq
