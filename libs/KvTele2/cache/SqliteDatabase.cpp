#include "KvTele2/cache/SqliteDatabase.h"

#include <sqlite3.h>

#include <array>
#include <utility>

namespace kv::cache {
namespace {

// The library reads only, and asks for bytes that it may change.
unsigned char* ForTheLibrary(std::string_view bytes) {
  return const_cast<unsigned char*>(reinterpret_cast<const unsigned char*>(bytes.data()));
}

// Everything in a database that could act is off, and what costs time or memory is bounded.
bool Harden(sqlite3* database) {
  constexpr std::array kSwitches = {
      std::pair(SQLITE_DBCONFIG_DEFENSIVE, 1),      std::pair(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0),
      std::pair(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0), std::pair(SQLITE_DBCONFIG_ENABLE_VIEW, 0),
      std::pair(SQLITE_DBCONFIG_ENABLE_FKEY, 0),    std::pair(SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0)};
  constexpr std::array kLimits = {std::pair(SQLITE_LIMIT_SQL_LENGTH, 4096),
                                  std::pair(SQLITE_LIMIT_COLUMN, 32),
                                  std::pair(SQLITE_LIMIT_EXPR_DEPTH, 20),
                                  std::pair(SQLITE_LIMIT_COMPOUND_SELECT, 2),
                                  std::pair(SQLITE_LIMIT_VDBE_OP, 25000),
                                  std::pair(SQLITE_LIMIT_FUNCTION_ARG, 8),
                                  std::pair(SQLITE_LIMIT_ATTACHED, 0),
                                  std::pair(SQLITE_LIMIT_TRIGGER_DEPTH, 1),
                                  std::pair(SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 8),
                                  std::pair(SQLITE_LIMIT_WORKER_THREADS, 0)};
  for (const auto& [option, value] : kSwitches) {
    if (sqlite3_db_config(database, option, value, nullptr) != SQLITE_OK) return false;
  }
  for (const auto& [limit, value] : kLimits) sqlite3_limit(database, limit, value);
  return true;
}

sqlite3* OpenInMemory() {
  sqlite3* database = nullptr;
  const int result =
      sqlite3_open_v2(":memory:", &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY, nullptr);
  if (result == SQLITE_OK) return database;
  sqlite3_close(database);
  return nullptr;
}

}  // namespace

void SqliteDatabase::Close::operator()(sqlite3* database) const {
  sqlite3_close(database);
}

void SqliteStatement::Finalize::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

std::optional<SqliteDatabase> SqliteDatabase::MakeEmpty() {
  SqliteDatabase made(OpenInMemory());
  if (!made.mDatabase) return std::nullopt;
  return made;
}

std::optional<SqliteDatabase> SqliteDatabase::OpenHostile(std::string_view bytes, int longestValue) {
  SqliteDatabase opened(OpenInMemory());
  if (!opened.mDatabase || !Harden(opened.mDatabase.get())) return std::nullopt;
  opened.SetLongestValue(longestValue);
  const auto size = static_cast<sqlite3_int64>(bytes.size());
  if (sqlite3_deserialize(opened.mDatabase.get(), "main", ForTheLibrary(bytes), size, size,
                          SQLITE_DESERIALIZE_READONLY) != SQLITE_OK) {
    return std::nullopt;
  }
  return opened;
}

void SqliteDatabase::SetLongestValue(int bytes) {
  sqlite3_limit(mDatabase.get(), SQLITE_LIMIT_LENGTH, bytes);
}

bool SqliteDatabase::Execute(const std::string& sql) {
  return sqlite3_exec(mDatabase.get(), sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<SqliteStatement> SqliteDatabase::Prepare(std::string_view sql) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(mDatabase.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  if (result != SQLITE_OK || statement == nullptr) return std::nullopt;
  return SqliteStatement(statement);
}

std::optional<std::string> SqliteDatabase::Serialize() const {
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(mDatabase.get(), "main", &size, 0), &sqlite3_free);
  if (!bytes) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size));
}

bool SqliteStatement::Bind(int parameter, std::int64_t number) {
  return sqlite3_bind_int64(mStatement.get(), parameter + 1, number) == SQLITE_OK;
}

bool SqliteStatement::BindText(int parameter, std::string_view text) {
  return sqlite3_bind_text64(mStatement.get(), parameter + 1, text.empty() ? "" : text.data(), text.size(),
                             SQLITE_STATIC, SQLITE_UTF8) == SQLITE_OK;
}

bool SqliteStatement::BindBlob(int parameter, std::string_view bytes) {
  return sqlite3_bind_blob64(mStatement.get(), parameter + 1, bytes.empty() ? "" : bytes.data(), bytes.size(),
                             SQLITE_STATIC) == SQLITE_OK;
}

SqliteStatement::Row SqliteStatement::Step() {
  const int result = sqlite3_step(mStatement.get());
  if (result == SQLITE_ROW) return Row::Here;
  return result == SQLITE_DONE ? Row::None : Row::Error;
}

void SqliteStatement::Reset() {
  sqlite3_reset(mStatement.get());  // what it returns is the error of the last step, which that has told
  sqlite3_clear_bindings(mStatement.get());
}

std::optional<std::int64_t> SqliteStatement::Number(int column) const {
  if (sqlite3_column_type(mStatement.get(), column) != SQLITE_INTEGER) return std::nullopt;
  return sqlite3_column_int64(mStatement.get(), column);
}

std::optional<std::string> SqliteStatement::Text(int column) const {
  if (sqlite3_column_type(mStatement.get(), column) != SQLITE_TEXT) return std::nullopt;
  const unsigned char* text = sqlite3_column_text(mStatement.get(), column);
  if (text == nullptr) return std::nullopt;
  const int size = sqlite3_column_bytes(mStatement.get(), column);
  return std::string(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
}

std::optional<std::string> SqliteStatement::Blob(int column) const {
  if (sqlite3_column_type(mStatement.get(), column) != SQLITE_BLOB) return std::nullopt;
  const void* bytes = sqlite3_column_blob(mStatement.get(), column);
  const int size = sqlite3_column_bytes(mStatement.get(), column);
  if (size > 0 && bytes == nullptr) return std::nullopt;  // no memory
  return std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(size));
}

}  // namespace kv::cache
