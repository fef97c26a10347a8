// JSON read strictly: brackets nested only so deep, every member once in its object, nothing after
// the end. One pass, in time that grows with the text and no faster.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace host {

/// Reads `text`. When it is an object with a list `listName`, each element of that list goes to
/// `takeElement` as soon as it is complete and is then forgotten, because a million of them need
/// not be in memory at once; the list in the result is empty. Throws std::runtime_error with line,
/// column and reason, in one line of ASCII.
nlohmann::json ReadStrictJson(
    std::string_view text, std::string_view listName,
    const std::function<void(const nlohmann::json& element)>& takeElement);

/// `text` in quotes, all but printable ASCII escaped as in JSON.
std::string QuoteText(const std::string& text);

/// `text` with "?" for all but printable ASCII, which makes it one harmless line.
std::string ReplaceUnprintable(std::string_view text);

}  // namespace host
