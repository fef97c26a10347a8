#include "host/collect/unsafe_folders.h"

#include <fmt/format.h>

namespace host {
namespace {

constexpr char kVariable[] =
    "{} has a %, and the interpreter may put the value of a variable there; {}";

}  // namespace

std::optional<char> FindSplit(std::string_view folder) {
  if (folder.find('%') != std::string_view::npos) return '%';
  const bool hasBlank = folder.find(' ') != std::string_view::npos;
  const bool quotesStay = hasBlank && folder.find_first_of("&()@^") == std::string_view::npos;
  // Without quotes these end a word, or are taken out of it.
  const std::size_t split = folder.find_first_of(" &^,;=");
  if (quotesStay || split == std::string_view::npos) return std::nullopt;
  return folder[split];
}

std::optional<std::string> ObjectToHostFolder(const std::string& folder) {
  const std::optional<char> split = FindSplit(folder);
  if (!split) return std::nullopt;
  if (*split == '%') return fmt::format(kVariable, folder, "move the program to another folder");
  return fmt::format(
      "{} is cut at {} where a tool's path alone is in quotes: another program may be started, and "
      "the tool is not found; move the program to another folder",
      folder, *split == ' ' ? "its first blank" : fmt::format("its first {}", *split));
}

std::optional<std::string> ObjectToLogFolder(const std::string& folder) {
  if (folder.find('%') == std::string::npos) return std::nullopt;
  return fmt::format(kVariable, folder, "choose another with --log-folder");
}

}  // namespace host
