// Rules as data: files of SQL (rules.sql explains their form).
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A rule file, a settings file or a suppression file that cannot be used: "FILE:LINE: reason", in
/// one line of UTF-8.
class HealthFileError : public std::runtime_error {
 public:
  HealthFileError(std::string_view file, std::size_t line, std::string_view reason);
};

/// Words and intermediate results that rules refer to.
struct RuleTable {
  std::string name;
  std::vector<std::string> indexes;  ///< the columns of each, with commas
  bool isFixed = false;              ///< the same for every machine
  std::string sql;                   ///< one SELECT
};

struct Rule {
  std::string id;      ///< "drive.failed"
  std::string part;    ///< the table of the parts that it judges
  std::string area;    ///< of the machine, as findings are shown
  std::string column;  ///< of the part, where people see the evidence; several have commas
  std::string why;
  std::string next;
  std::string source;    ///< who judges so; may be empty
  bool isOfLog = false;  ///< it is about what was
  std::string sql;       ///< one SELECT
  std::string file;      ///< whose rule it is; empty: the program's own
  std::size_t line = 0;  ///< of the SELECT, from 1
};

struct RuleFile {
  std::vector<RuleTable> tables;
  std::vector<Rule> rules;
};

/// Reads the text (UTF-8) of `file`. What the SELECTs say is not looked at. Throws HealthFileError.
RuleFile ReadRuleFile(std::string_view text, const std::string& file);
/// The same of a file of the user's, which has rules only.
std::vector<Rule> ReadOwnRules(std::string_view text, const std::string& file);

/// The program's own.
const RuleFile& GetBuiltInRules();

/// Adds `more` to `rules`. A rule with the id of one that is there takes its place.
void AddRules(std::vector<Rule>& rules, const std::vector<Rule>& more);

}  // namespace host
