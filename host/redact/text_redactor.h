// Replaces the values of a list in one text.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/redact/value_finder.h"
#include "host/redact/value_list.h"
#include "host/redact/value_matcher.h"

namespace host {

/// A text without the NULs of UTF-16, for whoever looks for values in it.
class NarrowText {
 public:
  explicit NarrowText(std::string_view text);

  std::string_view View() const { return isNarrow ? text : std::string_view(narrow); }
  /// Where the character number `at` is in the text itself.
  std::size_t PlaceOf(std::size_t at) const { return isNarrow ? at : places[at]; }

 private:
  std::string_view text;
  bool isNarrow;
  std::string narrow;
  std::vector<std::size_t> places;
};

/// Calls `take` for every value that is known by its shape, a label or its place.
void FindValues(std::string_view text, TextPlace place, const TakeValue& take);

/// Numbers of lines for places that mostly come one after the other.
class LineCounter {
 public:
  explicit LineCounter(const std::string& text) : text(text) {}
  /// From 1.
  std::size_t LineOf(std::size_t at);

 private:
  const std::string& text;  ///< may change, but for its line feeds
  std::size_t last = 0;
  std::size_t line = 1;
};

class TextRedactor {
 public:
  /// All values must have been found; `values` counts what is replaced.
  explicit TextRedactor(ValueList& values);

  /// `name` is for the list: "storcli /c0 show". `hasOrdinary`: a value that is an ordinary word
  /// may be in the text, which takes a second look at it.
  std::string Redact(std::string_view text, TextPlace place, bool hasOrdinary,
                     const std::string& name);

  /// The values that `text`, made of redacted ones, has and that are nobody's pseudonyms.
  std::vector<std::size_t> FindLeaks(std::string_view text) const;

 private:
  /// A password's stretch, in bytes. It is written out, so that its length need not be kept.
  struct WrittenPassword {
    std::size_t begin = 0;
    std::size_t end = 0;
    Writing writing = Writing::kPlain;
  };

  void ReplaceSpots(std::string& text, TextPlace place, const std::string& name,
                    std::vector<WrittenPassword>& passwords);
  void ForEachMatch(std::string_view text, const std::function<void(const Match&)>& take) const;
  /// Returns whether there was one.
  bool ReplaceMatches(std::string& text, const std::string& name,
                      std::vector<WrittenPassword>& passwords);
  static std::string HidePasswords(std::string_view text, std::vector<WrittenPassword> passwords);
  void Count(std::size_t number, std::size_t at, const std::string& name, LineCounter& lines);

  ValueList& values;
  ValueMatcher matcher;
  std::unordered_set<std::string> pseudonyms;
};

}  // namespace host
