#include "frame/attachment.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>

#include "frame/sentences.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

/// Room for `size` bytes and a terminator; null when there is no memory for them.
std::unique_ptr<char[]> AllocateText(std::uint64_t size) {
  if (size >= std::numeric_limits<std::ptrdiff_t>::max()) return nullptr;
  return std::unique_ptr<char[]>(new (std::nothrow) char[static_cast<std::size_t>(size) + 1]);
}

}  // namespace

std::unique_ptr<char[]> ReadWholeReport(CallerLog log, TextFile& file) {
  const std::uint64_t size = file.SizeAndRewind();
  log(kDetail, "Size:", size);
  std::unique_ptr<char[]> text = AllocateText(size);
  if (!text) {
    log(kDetail, kNoMemory);
    return nullptr;
  }
  // Line ends shrink from two bytes to one on the way, so the lines fit unless the file has grown
  // since.
  std::uint64_t length = 0;
  std::string_view line;
  for (LineReader lines(&file); lines.Next(line);) {
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(line.size(), size - length));
    line.copy(text.get() + length, count);
    length += count;
  }
  text[length] = '\0';
  return text;
}

void AddAttachment(RInstance& row, const Column& column, std::unique_ptr<char[]> text,
                   const std::string& fileName) {
  const std::string key(column.key);
  const std::string value = text.get();
  text.reset();
  row.AddProperty(key, std::string(column.label), value, kPropertyFlag);
  row.AddPropertyAttr(key, "raw", "true");
  row.AddPropertyAttr(key, "filename", fileName);
}

}  // namespace pq
