// Names in a database.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace host {

/// `name` as an SQL identifier; any text can be one.
std::string QuoteName(std::string_view name);

/// A label as a column's name: "Mfg. Date" is mfg_date, "StripeSize" is stripe_size. Empty when the
/// label has no letter and no digit.
std::string MakeSnakeCase(std::string_view label);

/// Gives out names that differ in more than case, as SQL needs them.
class UniqueNames {
 public:
  /// `wanted`, or if that is taken, with the first number from 2 on that makes it another name.
  std::string Take(std::string_view wanted);

 private:
  std::set<std::string> taken;  ///< in lower case
};

}  // namespace host
