// Where a collection that is to be sent goes: the report, and the recording beside it.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "host/collect/machine_facts.h"
#include "host/pqhost/source.h"
#include "host/program/destination.h"
#include "host/text/time_text.h"

namespace host {

struct ReportPlace {
  std::filesystem::path report;     ///< NAME.html
  std::filesystem::path recording;  ///< NAME.zip
};

/// Machine and time as a name for files, such as "NODE31-2026-11-18T0941": letters and digits of
/// ASCII, "-", "_" and ".". `machine` is UTF-8.
std::string NameCollection(std::string_view machine, const LocalTime& time);
/// The same of what `options` collect from; a recording that knows no name gives its file's, and
/// one that knows no time the present one. Throws RecordingError and LiveError.
std::string NameCollection(const SourceOptions& options);

/// The place that a user gave: a folder, which gets files of `makeName`, numbered when these are
/// there; or the files' name, with or without its extension. The current folder when he gave none.
/// Throws UsageError when a file of the given name is there.
ReportPlace ChooseReportPlace(const Destination& given,
                              const std::function<std::string()>& makeName);

/// The ZIP file of `makeName` in the current folder, numbered when that is there.
std::filesystem::path ChooseRecordingPlace(const std::function<std::string()>& makeName);

}  // namespace host
