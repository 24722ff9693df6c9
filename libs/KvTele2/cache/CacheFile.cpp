#include "KvTele2/cache/CacheFile.h"

#include <optional>
#include <set>
#include <utility>

#include "KvTele2/cache/CacheFormat.h"
#include "KvTele2/cache/SqliteDatabase.h"
#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "base/LittleEndian.h"
#include "base/PathText.h"

namespace kv::cache {

namespace fs = std::filesystem;

namespace {

void AppendText(std::string& bytes, const std::string& ansi) {
  bytes += AnsiToUtf8(ansi);
  bytes += '\0';
}

std::string PartName(PanelResourceKind kind, const PanelResource& entry) {
  return (kind == PanelResourceKind::Font ? "font " : "image ") + std::to_string(entry.id);
}

// Why this part cannot stand in a file; empty when it can.
std::string FaultOf(PanelResourceKind kind, const CachePart& part, std::uint64_t& bytes) {
  if (part.size() > kMostResources) return "there are more than " + std::to_string(kMostResources) + " of a kind";
  std::set<std::uint16_t> ids;
  for (const CachedResource& one : part) {
    const std::string name = PartName(kind, one.entry);
    if (!ids.insert(one.entry.id).second) return name + " is there twice";
    if (one.bytes.size() > kMostResourceBytes) return name + " is larger than 16 MB";
    if (one.bytes.size() != one.entry.length || Crc32(one.bytes) != one.entry.check) return name + " is not whole";
    if (one.entry.name.size() > kLongestResourceName) return "the name of " + name + " is too long";
    bytes += one.bytes.size();
  }
  return {};
}

std::string FaultOf(const CacheContent& content) {
  std::uint64_t bytes = 0;
  for (const PanelResourceKind kind : kCacheKinds) {
    if (!content.Part(kind)) continue;
    if (!content.owner) return "nobody is named whose fonts and images these are";
    if (std::string fault = FaultOf(kind, *content.Part(kind), bytes); !fault.empty()) return fault;
  }
  return bytes > kMostCacheBytes ? "all of them together have more than 256 MB" : "";
}

bool WriteTables(SqliteDatabase& database) {
  bool isDone = database.Execute("PRAGMA page_size = 4096") && database.Execute("PRAGMA encoding = 'UTF-8'") &&
                database.Execute("PRAGMA application_id = " + std::to_string(kApplicationId)) &&
                database.Execute("PRAGMA user_version = " + std::to_string(kFormatVersion));
  for (const CacheTable& table : kCacheTables) isDone = isDone && database.Execute(std::string(table.sql));
  return isDone;
}

bool Insert(SqliteDatabase& database, const CacheContent& content) {
  auto row = database.Prepare("INSERT INTO controller VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
  const CacheOwner& owner = *content.owner;
  const std::string texts[] = {AnsiToUtf8(owner.version.model), AnsiToUtf8(owner.version.hardwareCode),
                               AnsiToUtf8(owner.version.osVersion), AnsiToUtf8(owner.version.osBuild)};
  const std::string project = AnsiToUtf8(owner.project);
  const std::string savedAt = AnsiToUtf8(content.savedAt);
  bool isDone = row.has_value();
  for (int i = 0; i < 4; ++i) isDone = isDone && row->BindText(i, texts[i]);
  return isDone && row->Bind(4, owner.serialNumber) && row->BindText(5, project) && row->BindText(6, savedAt) &&
         row->Bind(7, SealOf(content)) && row->Step() == SqliteStatement::Row::None;
}

bool Insert(SqliteDatabase& database, PanelResourceKind kind, const CachePart& part) {
  auto count = database.Prepare("INSERT INTO part VALUES (?, ?)");
  auto row = database.Prepare("INSERT INTO resource VALUES (NULL, ?, ?, ?, ?, ?, ?, ?, ?)");
  const auto kindNumber = static_cast<std::int64_t>(kind);
  bool isDone = count && row && count->Bind(0, kindNumber) && count->Bind(1, static_cast<std::int64_t>(part.size())) &&
                count->Step() == SqliteStatement::Row::None;
  std::int64_t place = 0;
  for (const CachedResource& one : part) {
    if (!isDone) break;
    const std::string name = AnsiToUtf8(one.entry.name);
    const std::string readAt = AnsiToUtf8(one.readAt);
    isDone = row->Bind(0, kindNumber) && row->Bind(1, place++) && row->Bind(2, one.entry.id) &&
             row->BindText(3, name) && row->Bind(4, one.entry.length) && row->Bind(5, one.entry.check) &&
             row->BindText(6, readAt) && row->BindBlob(7, one.bytes) && row->Step() == SqliteStatement::Row::None;
    row->Reset();
  }
  return isDone;
}

bool Write(SqliteDatabase& database, const CacheContent& content) {
  if (!database.Execute("BEGIN") || !WriteTables(database)) return false;
  if (content.owner && !Insert(database, content)) return false;
  for (const PanelResourceKind kind : kCacheKinds) {
    if (content.Part(kind) && !Insert(database, kind, *content.Part(kind))) return false;
  }
  return database.Execute("COMMIT");
}

// The fault that the system, not the content, has with a file.
std::optional<CacheError> FaultOfFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::status(file, error);
  const auto fault = [&](CacheFault what, std::string text) {
    return CacheError{.fault = what, .file = {.file = Utf8FromPath(file), .place = {}, .what = std::move(text)}};
  };
  if (status.type() == fs::file_type::not_found) return fault(CacheFault::Missing, "it does not exist");
  if (fs::is_regular_file(status) && fs::file_size(file, error) > kMostCacheBytes && !error) {
    return fault(CacheFault::TooLarge, "it is larger than 256 MB, which no colour cache file is");
  }
  return std::nullopt;
}

std::expected<std::string, CacheError> BytesOf(const fs::path& file) {
  if (auto fault = FaultOfFile(file)) return std::unexpected(*std::move(fault));
  auto bytes = ReadWholeFile(file, kMostCacheBytes);
  if (!bytes) return std::unexpected(CacheError{CacheFault::Unreadable, std::move(bytes.error())});
  return *std::move(bytes);
}

}  // namespace

bool HasBytesOf(const PanelResource& had, const PanelResource& wanted) {
  return had.id == wanted.id && had.length == wanted.length && had.check == wanted.check;
}

std::uint32_t DirectoryCheck(const CachePart& part) {
  std::string bytes;
  for (const CachedResource& one : part) {
    AppendLittleEndian(bytes, one.entry.id);
    AppendLittleEndian(bytes, one.entry.length);
    AppendLittleEndian(bytes, one.entry.check);
    std::string name = one.entry.name;
    name.resize(kLongestResourceName, '\0');
    bytes += name;
  }
  return Crc32(bytes);
}

std::uint32_t SealOf(const CacheContent& content) {
  const CacheOwner& owner = *content.owner;
  std::string bytes;
  for (const std::string* text :
       {&owner.version.model, &owner.version.hardwareCode, &owner.version.osVersion, &owner.version.osBuild}) {
    AppendText(bytes, *text);
  }
  AppendLittleEndian(bytes, owner.serialNumber);
  AppendText(bytes, owner.project);
  AppendText(bytes, content.savedAt);
  for (const PanelResourceKind kind : kCacheKinds) {
    if (!content.Part(kind)) continue;
    bytes += static_cast<char>(kind);
    AppendLittleEndian(bytes, static_cast<std::uint32_t>(content.Part(kind)->size()));
    for (const CachedResource& one : *content.Part(kind)) {
      AppendLittleEndian(bytes, one.entry.id);
      AppendLittleEndian(bytes, one.entry.length);
      AppendLittleEndian(bytes, one.entry.check);
      AppendText(bytes, one.entry.name);
      AppendText(bytes, one.readAt);
    }
  }
  return Crc32(bytes);
}

std::expected<std::string, std::string> CacheBytes(const CacheContent& content) {
  if (std::string fault = FaultOf(content); !fault.empty()) return std::unexpected(std::move(fault));
  auto database = SqliteDatabase::MakeEmpty();
  std::optional<std::string> bytes;
  if (database && Write(*database, content)) bytes = database->Serialize();
  if (!bytes) return std::unexpected("there is not enough memory for it");
  if (bytes->size() > kMostCacheBytes) return std::unexpected("all of them together have more than 256 MB");
  return *std::move(bytes);
}

std::expected<CacheContent, CacheError> ReadCacheFile(const fs::path& file) {
  const auto bytes = BytesOf(file);
  if (!bytes) return std::unexpected(bytes.error());
  return ParseCache(*bytes, Utf8FromPath(file));
}

CacheSalvage SalvageCacheFile(const fs::path& file) {
  const auto bytes = BytesOf(file);
  return bytes ? SalvageCache(*bytes) : CacheSalvage{};
}

std::expected<void, FileError> SaveCacheFile(const fs::path& file, const CacheContent& content) {
  const auto bytes = CacheBytes(content);
  if (bytes) return SaveAtomically(file, *bytes);
  return std::unexpected(
      FileError{.file = Utf8FromPath(file), .place = {}, .what = "it cannot be made: " + bytes.error()});
}

}  // namespace kv::cache
