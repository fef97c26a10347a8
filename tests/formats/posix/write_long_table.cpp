// Writes a table of ROWS rows, and a whole file of as many lines, in one format, and does nothing
// else, so that its instructions can be counted.
//   write_long_table FORMAT ROWS
#include <cstdlib>
#include <string>

#include "tests/support/program/made_collection.h"

int main(int, char** arguments) {
  const long rows = std::strtol(arguments[2], nullptr, 10);
  test::MadeCollection made;
  // A row in any case: for a table without rows the catalogue is asked, which others need not do.
  made.Table("LONG").Row({{"Name", "first"}});
  std::string file;
  for (long i = 0; i < rows; ++i) {
    const std::string number = std::to_string(i);
    made.Row({{"Name", "CPU " + number + " Temp"},
              {"State", i % 3 == 0 ? "ok" : "f\xFCnf <b>,\r\n\"gro\xDF\"\x1b[1m"},
              {"Text", std::string(static_cast<std::size_t>(i % 50), 'x')}});
    if (i % 5 == 0) made.Row({{"Other", number}, {"Name", number}});
    file += "line " + number + " of a report\r\n";
  }
  made.Table("FILE").FileRow(file, "report.txt");
  made.As(arguments[1]);
}
