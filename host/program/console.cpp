#include "host/program/console.h"

#include "host/text/screen_text.h"

namespace host {

void Complain(const Console& console, const std::string& text) {
  console.error << "pqhost: " << EscapeControls(text) << std::endl;
}

}  // namespace host
