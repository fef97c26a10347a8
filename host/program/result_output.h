// A command's result on its way to standard output or into a file.
#pragma once

#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "host/files/output_file.h"
#include "host/program/console.h"
#include "host/program/destination.h"
#include "host/text/screen.h"

namespace host {

/// Made before the work begins, so that nothing is done for a file that cannot be written. The file
/// is either whole or not there.
class ResultOutput {
 public:
  /// `console` has to outlive this. Throws UsageError when the file cannot be created.
  ResultOutput(const Destination& destination, const Console& console);

  /// Has `write` write the whole result, once. Throws std::runtime_error when the file could not be
  /// written.
  void Write(const std::function<void(const Screen& screen, std::ostream& out)>& write);

 private:
  const Console& console;
  std::optional<OutputFile> file;  ///< none: standard output
};

/// For formats that are not text. Throws UsageError when a result in `format` would go to a
/// terminal.
void RefuseBytesOnTerminal(const std::string& format, const Destination& destination,
                           const Console& console);

}  // namespace host
