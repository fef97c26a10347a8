#include "host/collect/table_status.h"

namespace host {

std::string DescribeStatus(const TableStatus& status) {
  std::string text = status.text;
  for (const std::string& note : status.notes) text += "; " + note;
  return text;
}

}  // namespace host
