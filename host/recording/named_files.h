// The files of a recording. Each is read once, however many members name it.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "host/recording/reading_rules.h"
#include "host/recording/stored_files.h"
#include "host/text/bytes.h"

namespace host {

class NamedFiles {
 public:
  /// `stored` must outlive this object.
  NamedFiles(const StoredFiles& stored, const RecordingLimits& limits)
      : stored(stored), limits(limits) {}

  /// The bytes of the file `name`. Throws std::runtime_error with the name in quotes and the
  /// reason.
  Bytes Read(const std::string& name);

  /// One of the recording's own files, which no member names. Throws std::runtime_error with the
  /// reason alone.
  Bytes ReadOwn(const char* name);

  /// All that were read, by name.
  const std::map<std::string, Bytes>& All() const { return files; }

 private:
  Bytes ReadFile(const std::string& name, std::uint64_t sizeLimit);

  const StoredFiles& stored;
  RecordingLimits limits;
  std::uint64_t bytesRead = 0;
  std::map<std::string, Bytes> files;
};

}  // namespace host
