#include "fleet/database.h"

#include <array>
#include <charconv>

#include "host/text/trim.h"

namespace fleet {
namespace {

/// The first line: details and hints follow in others.
std::string TakeFirstLine(const char* message) {
  const std::string_view text = host::Trim(message == nullptr ? "" : message);
  return std::string(text.substr(0, text.find('\n')));
}

/// One line of libpq's several, "connection to server at … failed: " before the last reason.
std::string JoinLines(const char* message) {
  std::string text;
  for (const char c : host::Trim(message == nullptr ? "" : message)) {
    const bool isSpace = c == '\n' || c == '\t' || c == ' ';
    if (!isSpace) text += c;
    if (isSpace && !text.ends_with(' ')) text += ' ';
  }
  return text;
}

std::string QuoteBy(char quote, std::string_view text) {
  std::string quoted(1, quote);
  for (const char c : text) {
    if (c == quote) quoted += c;
    quoted += c;
  }
  return quoted + quote;
}

}  // namespace

bool DatabaseFailure::IsOfValues() const {
  // Data, integrity and limits of the program; not a missing table, which no other value helps.
  for (const char* kind : {"22", "23", "54"}) {
    if (sqlState.starts_with(kind)) return true;
  }
  return false;
}

bool DatabaseFailure::IsOfTheMoment() const {
  // Connection, resources, the operator's doing, the system's.
  for (const char* kind : {"08", "53", "57", "58"}) {
    if (sqlState.starts_with(kind)) return true;
  }
  return sqlState.empty() || IsOfOrder();
}

bool DatabaseFailure::IsOfDisk() const { return sqlState == "53100"; }

bool DatabaseFailure::IsOfOrder() const { return sqlState == "40P01" || sqlState == "40001"; }

std::string Answer::ColumnName(std::size_t column) const {
  return PQfname(result.get(), static_cast<int>(column));
}

Oid Answer::ColumnType(std::size_t column) const {
  return PQftype(result.get(), static_cast<int>(column));
}

bool Answer::IsNull(std::size_t row, std::size_t column) const {
  return PQgetisnull(result.get(), static_cast<int>(row), static_cast<int>(column)) != 0;
}

std::string_view Answer::At(std::size_t row, std::size_t column) const {
  const int r = static_cast<int>(row);
  const int c = static_cast<int>(column);
  return {PQgetvalue(result.get(), r, c),
          static_cast<std::size_t>(PQgetlength(result.get(), r, c))};
}

std::int64_t Answer::NumberAt(std::size_t row, std::size_t column) const {
  const std::string_view text = At(row, column);
  std::int64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

std::size_t Answer::Changed() const {
  const std::string_view text = PQcmdTuples(result.get());
  std::size_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

Connection::Connection(const ConnectionWords& words, const std::string& purpose)
    : connection(nullptr, &PQfinish) {
  std::vector<const char*> names;
  std::vector<const char*> values;
  for (const auto& [name, value] : words) {
    names.push_back(name.c_str());
    values.push_back(value.c_str());
  }
  for (const auto& [name, value] :
       {std::pair<const char*, const char*>("fallback_application_name", purpose.c_str()),
        {"client_encoding", "UTF8"},
        {nullptr, nullptr}}) {
    names.push_back(name);
    values.push_back(value);
  }
  connection.reset(PQconnectdbParams(names.data(), values.data(), /*expand_dbname=*/1));
  if (!IsAlive()) throw DatabaseFailure(JoinLines(PQerrorMessage(connection.get())), "");
  PQsetNoticeProcessor(
      connection.get(), [](void*, const char*) {}, nullptr);
  // Times as every reader understands them, names of this schema alone, and no rounded numbers. No
  // question is so long that compiling it would pay, and what indexes lead to is mostly in memory.
  Run("set jit = off; set random_page_cost = 1.1; set search_path = fleet; set timezone = 'UTC'; "
      "set datestyle = 'ISO';"
      "set extra_float_digits = 1");
}

Answer Connection::Check(PGresult* result) {
  Answer answer(result);
  switch (PQresultStatus(result)) {
    case PGRES_COMMAND_OK:
    case PGRES_TUPLES_OK:
    case PGRES_COPY_IN:
    case PGRES_COPY_OUT:
      return answer;
    case PGRES_EMPTY_QUERY:
      throw DatabaseFailure("there is no statement", "42601");
    default: {
      const char* state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
      const char* primary = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
      throw DatabaseFailure(
          primary == nullptr ? JoinLines(PQerrorMessage(connection.get())) : TakeFirstLine(primary),
          state == nullptr || !IsAlive() ? "" : state);
    }
  }
}

void Connection::KeepPlans() {
  Run("set plan_cache_mode = force_generic_plan;"
      "set enable_hashjoin = off; set enable_mergejoin = off; set enable_seqscan = off");
  keepsPlans = true;
}

const std::string& Connection::Prepare(const std::string& sql) {
  const auto known = prepared.find(sql);
  if (known != prepared.end()) return known->second;
  const std::string name = "kept" + std::to_string(prepared.size());
  Check(PQprepare(connection.get(), name.c_str(), sql.c_str(), 0, nullptr));
  return prepared.emplace(sql, name).first->second;
}

Answer Connection::Ask(const std::string& sql, const std::vector<Value>& values) {
  std::vector<const char*> texts;
  for (const Value& value : values) texts.push_back(value ? value->c_str() : nullptr);
  if (keepsPlans) {
    return Check(PQexecPrepared(connection.get(), Prepare(sql).c_str(),
                                static_cast<int>(texts.size()), texts.data(), nullptr, nullptr, 0));
  }
  return Check(PQexecParams(connection.get(), sql.c_str(), static_cast<int>(texts.size()), nullptr,
                            texts.data(), nullptr, nullptr, 0));
}

void Connection::Run(const std::string& sql) { Check(PQexec(connection.get(), sql.c_str())); }

void Connection::Copy(const std::string& target, std::string_view rows) {
  SendRows("copy " + target + " from stdin", rows);
}

void Connection::Copy(const std::string& target, BinaryRows& rows) {
  SendRows("copy " + target + " from stdin (format binary)", rows.Take());
}

void Connection::SendRows(const std::string& copy, std::string_view rows) {
  constexpr std::size_t kMostAtOnce = 1 << 20;
  Check(PQexec(connection.get(), copy.c_str()));
  bool isSent = true;
  for (std::size_t at = 0; isSent && at < rows.size(); at += kMostAtOnce) {
    const std::string_view part = rows.substr(at, kMostAtOnce);
    isSent = PQputCopyData(connection.get(), part.data(), static_cast<int>(part.size())) == 1;
  }
  isSent = PQputCopyEnd(connection.get(), nullptr) == 1 && isSent;
  std::optional<DatabaseFailure> failure;
  while (PGresult* result = PQgetResult(connection.get())) {
    try {
      Check(result);
    } catch (const DatabaseFailure& one) {
      if (!failure) failure = one;
      if (!IsAlive()) break;
    }
  }
  if (failure) throw *failure;
  if (!isSent) throw DatabaseFailure(JoinLines(PQerrorMessage(connection.get())), "");
}

void Connection::CopyOut(const std::string& copy,
                         const std::function<void(std::string_view row)>& take) {
  Check(PQexec(connection.get(), copy.c_str()));
  char* row = nullptr;
  for (int size = PQgetCopyData(connection.get(), &row, 0); size > 0;
       size = PQgetCopyData(connection.get(), &row, 0)) {
    const std::unique_ptr<char, decltype(&PQfreemem)> kept(row, &PQfreemem);
    take({row, static_cast<std::size_t>(size) - 1});
  }
  // What ended it: all were there, or a failure.
  while (PGresult* result = PQgetResult(connection.get())) Check(result);
}

void Connection::RollBack() noexcept {
  if (IsAlive()) PQclear(PQexec(connection.get(), "rollback"));
}

std::string QuoteName(std::string_view name) { return QuoteBy('"', name); }

std::string QuoteLiteral(std::string_view text) {
  // Backslashes mean themselves: standard_conforming_strings is on since PostgreSQL 9.1.
  return QuoteBy('\'', text);
}

std::string WriteTexts(const std::vector<std::string>& texts) {
  return WriteValues({texts.begin(), texts.end()});
}

std::string WriteValues(const std::vector<Value>& values) {
  std::string array = "{";
  for (const Value& value : values) {
    if (array.size() > 1) array += ',';
    if (!value) {
      array += "null";
      continue;
    }
    array += '"';
    for (const char c : *value) {
      if (c == '"' || c == '\\') array += '\\';
      array += c;
    }
    array += '"';
  }
  return array + '}';
}

}  // namespace fleet
