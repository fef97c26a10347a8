#include "frame/table_source.h"

#include <utility>

namespace pq {

ToolCommand ToolCommandOf(std::string_view behindFolder, std::string file) {
  const std::size_t quote = behindFolder.find('"');
  std::string_view arguments =
      quote == std::string_view::npos ? std::string_view() : behindFolder.substr(quote + 1);
  arguments = arguments.substr(0, arguments.find_first_of("|>"));
  const std::size_t first = arguments.find_first_not_of(' ');
  arguments = first == std::string_view::npos
                  ? std::string_view()
                  : arguments.substr(first, arguments.find_last_not_of(' ') - first + 1);
  return {std::string(behindFolder.substr(0, quote)), std::string(arguments), std::move(file),
          false};
}

}  // namespace pq
