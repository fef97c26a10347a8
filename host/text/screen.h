// What results are laid out for: the screen, or the file in its place, and how much is to be there.
#pragma once

namespace host {

struct Screen {
  bool isTerminal = false;
  bool colors = false;
  unsigned width = 120;   ///< in columns
  bool showsAll = false;  ///< also old lines of logs
  /// Each row tells its machine, in formats where the head does not.
  bool identifiesRows = false;
  bool leavesAttachmentsOut = false;  ///< whole files, such as the tools' reports
};

}  // namespace host
