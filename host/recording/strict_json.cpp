#include "host/recording/strict_json.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>
#include <vector>

namespace host {
namespace {

using Json = nlohmann::json;

/// How deep brackets may be nested: far more than a recording needs.
constexpr std::size_t kDepthLimit = 16;
/// How much of the parser's words is passed on.
constexpr std::size_t kDetailLimit = 160;

/// Reads a text and keeps in `furthest` how far it was read.
class TrackedText {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TrackedText(const char* at, const char** furthest) : at(at), furthest(furthest) {}
  reference operator*() const { return *at; }
  TrackedText& operator++() {
    *furthest = ++at;
    return *this;
  }
  bool operator==(const TrackedText& other) const { return at == other.at; }
  bool operator!=(const TrackedText& other) const { return at != other.at; }

 private:
  const char* at;
  const char** furthest;
};

/// The parser's words, without its own number and place.
std::string ShortenDetail(const Json::exception& problem) {
  std::string_view words = problem.what();
  if (const std::size_t bracket = words.find("] "); bracket != std::string_view::npos) {
    words.remove_prefix(bracket + 2);
  }
  if (words.starts_with("parse error at ")) words.remove_prefix(words.find(": ") + 2);
  const bool isLong = words.size() > kDetailLimit;
  return ReplaceUnprintable(words.substr(0, kDetailLimit)) + (isLong ? "..." : "");
}

/// Is told of every bracket, name and value in turn. nlohmann's own ways to a document either take
/// a repeated member without a word, or look through the whole list after each of its elements.
class DocumentBuilder final : public nlohmann::json_sax<Json> {
 public:
  DocumentBuilder(std::string_view text, std::string_view listName,
                  const std::function<void(const Json&)>& takeElement)
      : text(text), listName(listName), takeElement(takeElement), furthest(text.data()) {}

  Json Build() {
    Json::sax_parse(TrackedText(text.data(), &furthest),
                    TrackedText(text.data() + text.size(), &furthest), this);
    return std::move(document);
  }

  bool null() override { return AddValue(nullptr); }
  bool boolean(bool value) override { return AddValue(value); }
  bool number_integer(std::int64_t value) override { return AddValue(value); }
  bool number_unsigned(std::uint64_t value) override { return AddValue(value); }
  bool number_float(double value, const std::string&) override { return AddValue(value); }
  bool string(std::string& value) override { return AddValue(value); }
  bool binary(Json::binary_t&) override { return false; }  // not in a text

  bool start_object(std::size_t) override { return Open(Json::object()); }
  bool end_object() override { return Close(); }
  bool start_array(std::size_t) override { return Open(Json::array()); }
  bool end_array() override { return Close(); }

  bool key(std::string& key) override {
    CheckDepth();
    if (open.back()->contains(key)) {
      Fail("member " + QuoteText(key) + " stands there for the second time in one object");
    }
    name = key;
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const Json::exception& problem) override {
    Fail("is no JSON: " + ShortenDetail(problem));
  }

 private:
  [[noreturn]] void Fail(const std::string& reason) const {
    const std::string_view read = text.substr(0, static_cast<std::size_t>(furthest - text.data()));
    const auto line = std::count(read.begin(), read.end(), '\n') + 1;
    const std::size_t column = read.size() - (read.rfind('\n') + 1);
    throw std::runtime_error("line " + std::to_string(line) + ", column " +
                             std::to_string(std::max<std::size_t>(column, 1)) + ": " + reason);
  }

  void CheckDepth() const {
    if (open.size() > kDepthLimit) Fail("brackets are nested too deep");
  }

  /// Adds a value to the object or list that is open, and answers with its place there.
  Json& Add(Json value) {
    CheckDepth();
    if (open.empty()) return document = std::move(value);
    Json& parent = *open.back();
    if (parent.is_object()) return parent[name] = std::move(value);
    parent.push_back(std::move(value));
    return parent.back();
  }

  bool AddValue(Json value) {
    Add(std::move(value));
    HandOver();
    return true;
  }

  bool Open(Json container) {
    const bool isMember = open.size() == 1 && open.front()->is_object();
    Json& added = Add(std::move(container));
    if (isMember && added.is_array() && name == listName) list = &added;
    open.push_back(&added);
    return true;
  }

  bool Close() {
    open.pop_back();
    HandOver();
    return true;
  }

  /// After a value is complete: if it is an element of the list, passes it on and forgets it.
  void HandOver() {
    if (open.empty() || open.back() != list) return;
    takeElement(list->back());
    list->clear();
  }

  std::string_view text;
  std::string_view listName;
  const std::function<void(const Json&)>& takeElement;
  const char* furthest;  ///< the end of the text read so far
  Json document;
  std::vector<Json*> open;  ///< the objects and lists around the next value, from the outermost
  std::string name;         ///< of the next member
  Json* list = nullptr;     ///< the one whose elements are passed on, once it has begun
};

}  // namespace

Json ReadStrictJson(std::string_view text, std::string_view listName,
                    const std::function<void(const Json& element)>& takeElement) {
  return DocumentBuilder(text, listName, takeElement).Build();
}

std::string QuoteText(const std::string& text) {
  return Json(text).dump(-1, ' ', /*ensure_ascii=*/true, Json::error_handler_t::replace);
}

std::string ReplaceUnprintable(std::string_view text) {
  std::string printable(text);
  for (char& c : printable) {
    if (c < ' ' || c > '~') c = '?';
  }
  return printable;
}

}  // namespace host
