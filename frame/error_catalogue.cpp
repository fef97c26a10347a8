#include "frame/error_catalogue.h"

namespace pq {

ErrorTable& GeneralErrors() {
  static ErrorTable errors;
  return errors;
}

std::map<int, ErrorTable>& CategoryErrors() {
  static std::map<int, ErrorTable> errors;
  return errors;
}

int RegisterError(int category, int code, const char* message) {
  const int identifier = category * 65536 + code;
  ErrorTable& table = category < 1 ? GeneralErrors() : CategoryErrors()[category];
  table[identifier] = message;
  return identifier;
}

}  // namespace pq
