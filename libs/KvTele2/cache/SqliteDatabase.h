#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace kv::cache {

class SqliteStatement;

// A database in memory: the one place that knows the library. Nothing is read from a file or written to one, and no
// other database can be reached from it.
class SqliteDatabase {
 public:
  // A new one, to be written. Nothing: there is no memory for it.
  [[nodiscard]] static std::optional<SqliteDatabase> MakeEmpty();
  // One whose bytes come from anybody: cannot be changed, runs nothing that is written in it, and takes no value of
  // more than `longestValue` bytes. The bytes must outlive it. Nothing: no memory. Whether they are a database, the
  // first statement shows.
  [[nodiscard]] static std::optional<SqliteDatabase> OpenHostile(std::string_view bytes, int longestValue);

  SqliteDatabase(SqliteDatabase&&) = default;
  SqliteDatabase& operator=(SqliteDatabase&&) = default;

  // The longest value that is read from now on.
  void SetLongestValue(int bytes);
  // Statements without results, one behind the other. False: one of them failed.
  [[nodiscard]] bool Execute(const std::string& sql);
  // Nothing: it cannot be understood, or the database is damaged.
  [[nodiscard]] std::optional<SqliteStatement> Prepare(std::string_view sql);
  // All bytes of it; nothing when there is no memory for them.
  [[nodiscard]] std::optional<std::string> Serialize() const;

 private:
  struct Close {
    void operator()(sqlite3* database) const;
  };
  explicit SqliteDatabase(sqlite3* database) : mDatabase(database) {}

  std::unique_ptr<sqlite3, Close> mDatabase;
};

// A statement and its results; its database outlives it. Columns and parameters are counted from 0.
class SqliteStatement {
 public:
  enum class Row { Here, None, Error };

  SqliteStatement(SqliteStatement&&) = default;
  SqliteStatement& operator=(SqliteStatement&&) = default;

  // Values are taken in with Step; texts and blobs must live until then.
  [[nodiscard]] bool Bind(int parameter, std::int64_t number);
  [[nodiscard]] bool BindText(int parameter, std::string_view text);
  [[nodiscard]] bool BindBlob(int parameter, std::string_view bytes);

  // The next row of the result.
  [[nodiscard]] Row Step();
  // Back to before the first row, for other values.
  void Reset();

  // Of the row that is here. Nothing: the value is of another type.
  [[nodiscard]] std::optional<std::int64_t> Number(int column) const;
  [[nodiscard]] std::optional<std::string> Text(int column) const;
  [[nodiscard]] std::optional<std::string> Blob(int column) const;

 private:
  friend class SqliteDatabase;
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  explicit SqliteStatement(sqlite3_stmt* statement) : mStatement(statement) {}

  std::unique_ptr<sqlite3_stmt, Finalize> mStatement;
};

}  // namespace kv::cache
