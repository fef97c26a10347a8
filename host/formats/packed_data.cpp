#include "host/formats/packed_data.h"

#include <optional>
#include <stdexcept>

#include "host/files/gzip.h"
#include "host/formats/json_document.h"
#include "host/text/base64.h"

namespace host {
namespace {

constexpr std::string_view kEnd = "</script>";

}  // namespace

void WritePackedData(const Collection& collection, const Assessment* assessment,
                     const Screen& screen, std::ostream& out) {
  GzipStream packed(kMostPackedBytes);
  WriteJson(collection, assessment, screen, packed);
  out << kPackedDataHead;
  // Of three bytes each, so that the pieces one after the other are Base64 of the whole.
  for (const std::string& piece : packed.TakePieces()) out << EncodeBase64(piece);
  out << kEnd;
}

std::string UnpackData(std::string_view html, std::size_t most) {
  // The last one: all that tools printed comes before it, and is escaped besides.
  const std::size_t head = html.rfind(kPackedDataHead);
  if (head == std::string_view::npos) throw std::runtime_error("has no data of a collection in it");
  html.remove_prefix(head + kPackedDataHead.size());
  const std::size_t end = html.find(kEnd);
  if (end == 0) throw std::runtime_error("was too large to carry its data: take the recording");
  const std::optional<std::string> packed =
      end == std::string_view::npos ? std::nullopt : DecodeBase64(html.substr(0, end));
  if (!packed) throw std::runtime_error("has data that is damaged or not whole");
  return UnpackGzip(*packed, most);
}

}  // namespace host
