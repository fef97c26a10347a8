#include "host/text/code_page.h"

#include <iconv.h>

#include <array>
#include <string>

namespace host {
namespace {

class IconvCodePage final : public CodePage {
 public:
  explicit IconvCodePage(iconv_t converter) : converter(converter) {}
  IconvCodePage(const IconvCodePage&) = delete;
  IconvCodePage& operator=(const IconvCodePage&) = delete;
  ~IconvCodePage() override { iconv_close(converter); }

  std::optional<char32_t> Decode(std::string_view bytes) override {
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    std::array<char, 2> in{};
    bytes.copy(in.data(), in.size());
    std::array<unsigned char, 8> out{};
    char* from = in.data();
    char* to = reinterpret_cast<char*>(out.data());
    std::size_t left = bytes.size();
    std::size_t room = out.size();
    const bool converted = iconv(converter, &from, &left, &to, &room) == 0;
    if (!converted || left != 0 || room != out.size() - 4) return std::nullopt;
    return static_cast<char32_t>(out[0] | out[1] << 8 | out[2] << 16 | out[3] << 24);
  }

 private:
  iconv_t converter;
};

}  // namespace

std::unique_ptr<CodePage> OpenCodePage(std::uint32_t number) {
  const std::string name = "CP" + std::to_string(number);
  const iconv_t converter = iconv_open("UTF-32LE", name.c_str());
  if (converter == reinterpret_cast<iconv_t>(-1)) return nullptr;
  return std::make_unique<IconvCodePage>(converter);
}

}  // namespace host
