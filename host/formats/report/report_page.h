// The report's page, style and script, as they stand in host/pqhost/report/. The build makes texts
// of these files.
#pragma once

#include <string_view>

namespace host {

/// The page, with the places @NONCE@, @STYLE@, @DATA@ and @SCRIPT@.
extern const std::string_view kReportPage;
extern const std::string_view kReportStyle;
/// The script, with the place @UNSEEN@.
extern const std::string_view kReportScript;

}  // namespace host
