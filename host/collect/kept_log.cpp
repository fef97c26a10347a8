#include "host/collect/kept_log.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

constexpr std::size_t kPieceSize = 1 << 20;

}  // namespace

void KeptLog::Add(const LogLine& line) {
  const Head head{line.text.size(), line.line, NumberFile(line.file),
                  static_cast<std::uint16_t>(line.level)};
  const std::size_t size = sizeof(head) + line.text.size();
  if (pieces.empty() || pieces.back().capacity() - pieces.back().size() < size) {
    pieces.emplace_back().reserve(std::max(kPieceSize, size));
  }
  std::vector<char>& piece = pieces.back();
  const auto* bytes = reinterpret_cast<const char*>(&head);
  piece.insert(piece.end(), bytes, bytes + sizeof(head));
  piece.insert(piece.end(), line.text.begin(), line.text.end());
  ++count;
}

KeptLog::Line KeptLog::ReadLine(const std::vector<char>& piece, std::size_t& at) const {
  Head head;
  std::memcpy(&head, piece.data() + at, sizeof(head));
  const std::string_view text(piece.data() + at + sizeof(head), head.size);
  at += sizeof(head) + head.size;
  return {head.level, files[head.file], head.line, text};
}

std::uint16_t KeptLog::NumberFile(const std::string& file) {
  auto known = std::find(files.begin(), files.end(), file);
  if (known == files.end()) known = files.insert(known, file);
  return static_cast<std::uint16_t>(known - files.begin());
}

}  // namespace host
