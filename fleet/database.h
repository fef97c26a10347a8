// PostgreSQL: a connection, what is asked of it, and how it refuses.
#pragma once

#include <libpq-fe.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fleet/binary_rows.h"

namespace fleet {

/// What PostgreSQL said against a statement, or why it cannot be reached, in one line of UTF-8.
class DatabaseFailure : public std::runtime_error {
 public:
  DatabaseFailure(const std::string& text, std::string sqlState)
      : std::runtime_error(text), sqlState(std::move(sqlState)) {}

  const std::string& SqlState() const { return sqlState; }
  /// The values were refused: the same again would be refused again.
  bool IsOfValues() const;
  /// The server, its disk or the way to it: later it may be well again.
  bool IsOfTheMoment() const;
  /// Two transactions waited for each other, and this one gave way.
  bool IsOfOrder() const;
  /// There is no room to write.
  bool IsOfDisk() const;

 private:
  std::string sqlState;  ///< five characters; empty when the connection itself failed
};

/// The answer to a statement. Values are texts, as PostgreSQL writes them.
class Answer {
 public:
  explicit Answer(PGresult* result) : result(result, &PQclear) {}

  std::size_t RowCount() const { return static_cast<std::size_t>(PQntuples(result.get())); }
  std::size_t ColumnCount() const { return static_cast<std::size_t>(PQnfields(result.get())); }
  std::string ColumnName(std::size_t column) const;
  /// The number that PostgreSQL has for the column's type.
  Oid ColumnType(std::size_t column) const;
  bool IsNull(std::size_t row, std::size_t column) const;
  /// Empty for nothing.
  std::string_view At(std::size_t row, std::size_t column) const;
  std::int64_t NumberAt(std::size_t row, std::size_t column) const;
  /// How many rows a statement changed.
  std::size_t Changed() const;

 private:
  std::unique_ptr<PGresult, decltype(&PQclear)> result;
};

using Value = std::optional<std::string>;  ///< none: null

/// Keywords of a connection, such as "host", with their values; libpq's environment variables and
/// defaults fill in the rest.
using ConnectionWords = std::vector<std::pair<std::string, std::string>>;

/// All functions throw DatabaseFailure.
class Connection {
 public:
  /// `purpose` is what pg_stat_activity shows of it.
  Connection(const ConnectionWords& words, const std::string& purpose);

  /// From now on each statement that is asked is planned once, by keys: for who asks the same ones
  /// for hours of rows that keys find. Plans made of statistics of another hour read whole tables.
  void KeepPlans();

  /// One statement; `values` are $1 and so on.
  Answer Ask(const std::string& sql, const std::vector<Value>& values = {});
  /// Several statements, separated by semicolons.
  void Run(const std::string& sql);
  /// Copies `rows`, in PostgreSQL's text format, into `target`: a table, with columns if need be.
  void Copy(const std::string& target, std::string_view rows);
  /// The same of rows that are taken out of `rows`.
  void Copy(const std::string& target, BinaryRows& rows);

  /// Hands over the rows of "copy … to stdout", one at a time, without their line feeds.
  void CopyOut(const std::string& copy, const std::function<void(std::string_view row)>& take);

  bool IsAlive() const { return PQstatus(connection.get()) == CONNECTION_OK; }
  /// Goes back to before a transaction that failed, as far as the connection lives.
  void RollBack() noexcept;

 private:
  Answer Check(PGresult* result);
  void SendRows(const std::string& copy, std::string_view rows);

  /// The name that the server knows the statement by.
  const std::string& Prepare(const std::string& sql);

  std::unique_ptr<PGconn, decltype(&PQfinish)> connection;
  bool keepsPlans = false;
  std::map<std::string, std::string> prepared;  ///< names of statements
};

/// `work` as a transaction, again when another one was in its way.
template <typename Work>
auto RunTransaction(Connection& connection, const Work& work) {
  constexpr int kMostTimes = 10;
  for (int time = 1;; ++time) {
    try {
      connection.Run("begin");
      auto result = work();
      connection.Run("commit");
      return result;
    } catch (const DatabaseFailure& failure) {
      connection.RollBack();
      if (!failure.IsOfOrder() || time == kMostTimes) throw;
    } catch (...) {
      connection.RollBack();
      throw;
    }
  }
}

/// A name in quotes, for a statement.
std::string QuoteName(std::string_view name);
/// A text in quotes, for a statement.
std::string QuoteLiteral(std::string_view text);

/// Arrays as PostgreSQL reads them: {1,2}, {"a","b"}, {"a",null}.
template <typename Number>
std::string WriteNumbers(const std::vector<Number>& numbers) {
  std::string text = "{";
  for (const Number number : numbers) {
    if (text.size() > 1) text += ',';
    text += std::to_string(number);
  }
  return text + '}';
}
std::string WriteTexts(const std::vector<std::string>& texts);
std::string WriteValues(const std::vector<Value>& values);

}  // namespace fleet
