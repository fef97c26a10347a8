// The report's page, style and script, as they are in host/formats/report/. The build makes texts
// of these files.
#pragma once

#include <string_view>

namespace host {

/// The page, with the places @NONCE@, @TITLE@, @STYLE@, @HEADER@, @SUMMARY@, @FOOTER@, @DATA@ and
/// @SCRIPT@.
extern const std::string_view kReportPage;
extern const std::string_view kReportStyle;
/// The script, in three files that use what those before them define; the first has the place
/// @UNSEEN@.
extern const std::string_view kReportTexts;
extern const std::string_view kReportTables;
extern const std::string_view kReportScript;

}  // namespace host
