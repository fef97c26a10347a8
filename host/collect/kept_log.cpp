#include "host/collect/kept_log.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "host/files/gzip.h"

namespace host {
namespace {

constexpr std::size_t kPieceSize = 1 << 20;

std::string Pack(std::string_view piece, std::string_view rest = {}) {
  GzipStream stream(std::numeric_limits<std::size_t>::max(), GzipEffort::kLeast);
  stream << piece << rest;
  return stream.Take();
}

}  // namespace

void KeptLog::Add(const LogLine& line) {
  const Head head{line.text.size(), line.line, NumberFile(line.file),
                  static_cast<std::uint16_t>(line.level)};
  last.append(reinterpret_cast<const char*>(&head), sizeof(head));
  if (last.size() + line.text.size() > kPieceSize) {
    // A text may be all that a tool printed, and is copied nowhere.
    packed.push_back(Pack(last, line.text));
    last.clear();
  } else {
    last += line.text;
  }
  ++count;
}

std::string KeptLog::Unpack(const std::string& piece) {
  return UnpackGzip(piece, std::numeric_limits<std::size_t>::max());
}

KeptLog::Line KeptLog::TakeLine(std::string_view& piece) const {
  Head head;
  std::memcpy(&head, piece.data(), sizeof(head));
  const std::string_view text = piece.substr(sizeof(head), head.size);
  piece.remove_prefix(sizeof(head) + head.size);
  return {head.level, files[head.file], head.line, text};
}

std::uint16_t KeptLog::NumberFile(const std::string& file) {
  auto known = std::find(files.begin(), files.end(), file);
  if (known == files.end()) known = files.insert(known, file);
  return static_cast<std::uint16_t>(known - files.begin());
}

}  // namespace host
