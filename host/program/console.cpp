#include "host/program/console.h"

#include "host/text/screen_text.h"

namespace host {

Screen DescribeScreen(const Console& console) {
  return {console.outIsTerminal, console.colors, console.width};
}

void Complain(const Console& console, const std::string& text) {
  console.error << console.programName << ": " << EscapeControls(text) << std::endl;
}

}  // namespace host
