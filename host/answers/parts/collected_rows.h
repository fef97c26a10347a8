// The rows of a collection's classes for readers of parts: texts in UTF-8, found by class and key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"
#include "host/text/decoder.h"

namespace host {

/// One row of a class; refers to the collection and its CollectedRows.
class CollectedRow {
 public:
  CollectedRow(const TextDecoder& decoder, const Row& row, std::int64_t number)
      : decoder(&decoder), row(row), number(number) {}

  std::int64_t Number() const { return number; }  ///< from 1
  /// The value below `key`, in UTF-8 and trimmed; empty without one.
  std::string Get(std::string_view key) const;
  /// The row's own label for `key`, trimmed; empty without one.
  std::string GetLabel(std::string_view key) const;
  /// The value as it was collected, such as a whole report, in UTF-8; none without the property.
  std::optional<DecodedText> FindText(std::string_view key) const;
  /// Of the property; `tool` as in Place.
  Place PlaceOf(std::string_view key, std::string_view tool = {}) const;

 private:
  const TextDecoder* decoder;
  Row row;
  std::int64_t number;
};

/// The rows of a class, each made for whoever asks: there can be more than memory has room for.
/// Refers to the collection and its CollectedRows.
class CollectedRowList {
 public:
  class Iterator {
   public:
    using iterator_category = std::input_iterator_tag;
    using value_type = CollectedRow;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = CollectedRow;

    Iterator() = default;
    Iterator(const TextDecoder* decoder, const Rows::Iterator& row) : decoder(decoder), row(row) {}
    CollectedRow operator*() const { return {*decoder, *row, number}; }
    Iterator& operator++() {
      ++row;
      ++number;
      return *this;
    }
    void operator++(int) { ++*this; }
    bool operator==(const Iterator& other) const { return row == other.row; }

   private:
    const TextDecoder* decoder = nullptr;
    Rows::Iterator row;
    std::int64_t number = 1;
  };

  CollectedRowList() = default;
  CollectedRowList(const TextDecoder& decoder, const Rows& rows) : decoder(&decoder), rows(&rows) {}

  std::size_t size() const { return rows->size(); }
  bool empty() const { return rows->empty(); }
  CollectedRow operator[](std::size_t row) const {
    return {*decoder, (*rows)[row], static_cast<std::int64_t>(row) + 1};
  }
  CollectedRow front() const { return *begin(); }
  Iterator begin() const { return {decoder, rows->begin()}; }
  Iterator end() const { return {decoder, rows->end()}; }

 private:
  static const Rows kNone;

  const TextDecoder* decoder = nullptr;
  const Rows* rows = &kNone;
};

class CollectedRows {
 public:
  explicit CollectedRows(const Collection& collection);

  /// Null when the class was not collected.
  const CollectedTable* FindTable(std::string_view className) const;
  /// The answers of the command lines that run `program`, such as "arcconf.exe", in their order;
  /// with these `arguments`.
  std::vector<const CollectedAnswer*> ListAnswers(std::string_view program,
                                                  std::string_view arguments) const;
  /// The last of them, which the classes show. Null when nobody asked, or when the machine does not
  /// have the program.
  const CollectedAnswer* FindAnswer(std::string_view program, std::string_view arguments) const;
  /// The text of a file of the recorded machine, by its path in any case. None without it, and on a
  /// live machine.
  std::optional<DecodedText> FindFile(std::string_view path) const;
  DecodedText Decode(std::string_view bytes) const {
    return decoder.Decode(SkipByteOrderMark(bytes));
  }
  /// The rows of `className`; none without the class.
  CollectedRowList ListRows(std::string_view className) const;

 private:
  /// What an answer was asked for by.
  struct Question {
    std::string program;  ///< in lower case
    std::string arguments;
  };

  const Collection& collection;
  TextDecoder decoder;
  std::vector<Question> questions;  ///< of each answer
};

/// "ended with code 5"; empty for a program that ended well, and for null.
std::string DescribeEnd(const CollectedAnswer* answer);

}  // namespace host
