#include "host/pqhost/open_file.h"

#include <filesystem>

#include "host/pqhost/gather.h"
#include "host/pqhost/kept_files.h"

namespace host {

Collection OpenFile(const SourceOptions& source, const Console& console, KeepLog keepLog,
                    const std::function<void()>& beforeRun) {
  const std::filesystem::path& path = *source.replay;
  const KeptFile kind = RecogniseFile(path);
  if (kind == KeptFile::kRecording) {
    return Gather(source, {}, console, keepLog, [&](auto&) { beforeRun(); }).collection;
  }
  Collection collection = ReadResult(path, kind);
  Complain(console, DescribeLoss(path, kind));
  beforeRun();
  return collection;
}

}  // namespace host
