#include "host/answers/parts/arcconf_section.h"

#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {

Integer ReadArcconfHeadNumber(std::string_view text, std::string_view start) {
  const std::string lower = LowerCase(text);
  if (!lower.starts_with(start)) return std::nullopt;
  std::string_view number = text.substr(start.size());
  if (number.ends_with(':')) number.remove_suffix(1);
  return ReadInteger(number);
}

std::string ComposeArcconfArrayId(const std::string& controller, std::string_view number) {
  return controller + " a" + std::string(number);
}

}  // namespace host
