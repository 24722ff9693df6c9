#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/cache/CacheFormat.h"
#include "KvTele2/cache/SqliteDatabase.h"
#include "base/AnsiText.h"
#include "base/Crc32.h"

namespace kv::cache {
namespace {

using Row = SqliteStatement::Row;

constexpr std::string_view kMagic{"SQLite format 3\0", 16};
constexpr std::size_t kHead = 100;
constexpr std::size_t kPageCount = 28;  // place in the head

constexpr const char* kRepair = ". An import into it keeps what is whole, and reads the rest from its controller again";

struct Fault {
  CacheFault fault;
  std::string what;
};
template <typename Value>
using OrFault = std::expected<Value, Fault>;

std::unexpected<Fault> NoCache(std::string what) {
  return std::unexpected(Fault{CacheFault::NoCache, "it is no colour cache file: " + std::move(what)});
}

std::unexpected<Fault> Damaged(std::string what) {
  return std::unexpected(Fault{CacheFault::Damaged, "it is damaged: " + std::move(what) + kRepair});
}

// A number of the head, the most significant byte first. The head is long enough.
std::uint32_t BigEndian(std::string_view head, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8 | static_cast<unsigned char>(head[at + i]);
  return value;
}

void PutBigEndian(std::string& head, std::size_t at, std::uint32_t value) {
  for (std::size_t i = 4; i-- > 0; value >>= 8) head[at + i] = static_cast<char>(value & 0xFFU);
}

// 0: there is no such size.
std::size_t PageSize(std::string_view head) {
  const std::uint32_t told = BigEndian(head, 16, 2);
  const std::size_t page = told == 1 ? 65536 : told;
  return page >= 512 && (page & (page - 1)) == 0 ? page : 0;
}

// How many bytes a whole file with this head has; nothing when no file can have such a head.
std::optional<std::uint64_t> WholeSize(std::string_view head) {
  const std::uint64_t size = std::uint64_t{PageSize(head)} * BigEndian(head, kPageCount, 4);
  if (size == 0 || size > kMostCacheBytes) return std::nullopt;
  return size;
}

// All that can be told without the library: what the file is, of which version, and whether its end is there.
OrFault<void> CheckHead(std::string_view bytes) {
  constexpr std::size_t kUserVersion = 60;
  constexpr std::size_t kApplication = 68;
  const auto cut = [&](std::string_view of) {
    return std::unexpected(Fault{CacheFault::Cut, "its end is missing: there are " + std::to_string(bytes.size()) +
                                                      " bytes" + std::string(of) + kRepair});
  };
  if (bytes.substr(0, kMagic.size()) != kMagic.substr(0, bytes.size())) return NoCache("it is no database");
  if (bytes.size() < kHead) return cut("");
  if (BigEndian(bytes, kApplication, 4) != kApplicationId) return NoCache("it is a database of another program");
  const std::uint32_t version = BigEndian(bytes, kUserVersion, 4);
  if (version > kFormatVersion) {
    return std::unexpected(Fault{CacheFault::Newer, "it was made by a newer version of this program (format " +
                                                        std::to_string(version) + ", this one reads format " +
                                                        std::to_string(kFormatVersion) +
                                                        "). Use that version, or import into another file"});
  }
  // Both are 1 where nothing but this file holds the data.
  const bool isAlone = bytes[18] == 1 && bytes[19] == 1;
  const auto whole = WholeSize(bytes);
  if (version == 0 || !isAlone || !whole) return Damaged("its head is not one of a cache");
  if (bytes.size() < *whole) return cut(" of " + std::to_string(*whole));
  if (bytes.size() > *whole) return Damaged("there is something behind its end");
  return {};
}

// UTF-8 of a file as the Windows-1252 that it came from.
std::optional<std::string> AnsiOf(const std::optional<std::string>& text) {
  if (!text) return std::nullopt;
  std::string ansi = Utf8ToAnsi(*text);
  if (ansi.find('\0') != std::string::npos || AnsiToUtf8(ansi) != *text) return std::nullopt;
  return ansi;
}

template <typename Number>
std::optional<Number> NumberOf(const SqliteStatement& row, int column, std::uint64_t most) {
  const auto value = row.Number(column);
  if (!value || *value < 0 || static_cast<std::uint64_t>(*value) > most) return std::nullopt;
  return static_cast<Number>(*value);
}

// A row of the table "resource" without its bytes.
struct Entry {
  std::int64_t number = 0;
  PanelResourceKind kind = PanelResourceKind::Font;
  std::uint32_t place = 0;
  CachedResource resource;
};

constexpr std::string_view kEntries =
    "SELECT number, kind, place, id, name, length, crc32, read_at, typeof(bytes), length(bytes) FROM resource ORDER BY "
    "number";
constexpr std::string_view kEntriesBackwards =
    "SELECT number, kind, place, id, name, length, crc32, read_at, typeof(bytes), length(bytes) FROM resource ORDER BY "
    "number DESC";

// Nothing: a value is missing, of another type, out of its range, or tells another length than the bytes have.
std::optional<Entry> EntryOf(const SqliteStatement& row) {
  const auto number = row.Number(0);
  const auto kind = NumberOf<std::uint8_t>(row, 1, 2);
  const auto place = NumberOf<std::uint32_t>(row, 2, kMostResources - 1);
  const auto id = NumberOf<std::uint16_t>(row, 3, 0xFFFF);
  auto name = AnsiOf(row.Text(4));
  const auto length = NumberOf<std::uint32_t>(row, 5, kMostResourceBytes);
  const auto check = NumberOf<std::uint32_t>(row, 6, 0xFFFFFFFF);
  auto readAt = AnsiOf(row.Text(7));
  const bool isGood = number && kind && *kind > 0 && place && id && name && name->size() <= kLongestResourceName &&
                      length && check && readAt && row.Text(8) == "blob" && row.Number(9) == std::int64_t{*length};
  if (!isGood) return std::nullopt;
  return Entry{.number = *number,
               .kind = static_cast<PanelResourceKind>(*kind),
               .place = *place,
               .resource = {.entry = {.id = *id, .length = *length, .check = *check, .name = *std::move(name)},
                            .readAt = *std::move(readAt),
                            .bytes = {}}};
}

// Reads a file whose head was good.
class Reader {
 public:
  explicit Reader(std::string_view bytes)
      : mSize(bytes.size()), mDatabase(SqliteDatabase::OpenHostile(bytes, kLongestCacheText)) {}

  [[nodiscard]] OrFault<CacheContent> Read();
  [[nodiscard]] CacheSalvage Salvage();

 private:
  [[nodiscard]] OrFault<void> CheckTables();
  [[nodiscard]] OrFault<void> ReadOwner(CacheContent& content);
  [[nodiscard]] OrFault<std::map<PanelResourceKind, std::uint32_t>> ReadCounts();
  // False of `take` ends it. The result is how the last step ended.
  [[nodiscard]] Row ForEachEntry(std::string_view sql, const std::function<bool(std::optional<Entry>)>& take);
  [[nodiscard]] OrFault<std::vector<Entry>> ReadEntries();
  [[nodiscard]] bool ReadBytes(Entry& entry);

  std::size_t mSize;
  std::optional<SqliteDatabase> mDatabase;
  std::optional<std::uint32_t> mSeal;
};

OrFault<void> Reader::CheckTables() {
  if (!mDatabase) return Damaged("there is not enough memory to read it");
  auto row = mDatabase->Prepare("SELECT type, name, tbl_name, sql FROM sqlite_master");
  if (!row) return Damaged("its tables cannot be read");
  std::set<std::string_view> seen;
  Row state = Row::None;
  while ((state = row->Step()) == Row::Here) {
    const auto name = row->Text(1);
    const auto table = std::ranges::find_if(kCacheTables, [&](const CacheTable& one) { return name == one.name; });
    const bool isOurs = table != kCacheTables.end() && row->Text(0) == "table" && row->Text(2) == name &&
                        row->Text(3) == table->sql && seen.insert(table->name).second;
    if (!isOurs) return NoCache("there is something in it that no cache has");
  }
  if (state == Row::Error || seen.size() != kCacheTables.size()) return Damaged("its tables are not all there");
  return {};
}

OrFault<void> Reader::ReadOwner(CacheContent& content) {
  auto row = mDatabase->Prepare(
      "SELECT model, hardware_code, os_version, os_build, project, saved_at, serial_number, seal FROM controller");
  Row state = row ? row->Step() : Row::Error;
  if (state == Row::None) return {};  // the empty cache
  const auto damaged = Damaged("whose fonts and images it holds cannot be read");
  if (state == Row::Error) return damaged;
  std::array<std::optional<std::string>, 6> texts;
  for (int i = 0; i < 6; ++i) texts[static_cast<std::size_t>(i)] = AnsiOf(row->Text(i));
  const auto serialNumber = NumberOf<std::uint32_t>(*row, 6, 0xFFFFFFFF);
  mSeal = NumberOf<std::uint32_t>(*row, 7, 0xFFFFFFFF);
  const bool isThere = std::ranges::all_of(texts, [](const auto& text) { return text.has_value(); });
  if (!isThere || !serialNumber || !mSeal || row->Step() != Row::None) return damaged;
  content.owner = CacheOwner{
      .version = {.model = *texts[0], .hardwareCode = *texts[1], .osVersion = *texts[2], .osBuild = *texts[3]},
      .serialNumber = *serialNumber,
      .project = *texts[4]};
  content.savedAt = *texts[5];
  return {};
}

OrFault<std::map<PanelResourceKind, std::uint32_t>> Reader::ReadCounts() {
  std::map<PanelResourceKind, std::uint32_t> counts;
  auto row = mDatabase->Prepare("SELECT kind, count FROM part");
  Row state = row ? Row::None : Row::Error;
  while (state != Row::Error && (state = row->Step()) == Row::Here) {
    const auto kind = NumberOf<std::uint8_t>(*row, 0, 2);
    const auto count = NumberOf<std::uint32_t>(*row, 1, kMostResources);
    const bool isGood = kind && *kind > 0 && count && counts.emplace(PanelResourceKind{*kind}, *count).second;
    if (!isGood) state = Row::Error;
  }
  if (state == Row::Error) return Damaged("how much it holds cannot be read");
  return counts;
}

Row Reader::ForEachEntry(std::string_view sql, const std::function<bool(std::optional<Entry>)>& take) {
  mDatabase->SetLongestValue(kLongestCacheText);  // of these columns; the length of the bytes is told without them
  auto row = mDatabase->Prepare(sql);
  std::size_t rows = 0;
  Row state = row ? Row::None : Row::Error;
  while (state != Row::Error && (state = row->Step()) == Row::Here) {
    if (++rows > kCacheKinds.size() * kMostResources || !take(EntryOf(*row))) return Row::Error;
  }
  return state;
}

OrFault<std::vector<Entry>> Reader::ReadEntries() {
  std::vector<Entry> entries;
  std::uint64_t bytes = 0;
  const Row ended = ForEachEntry(kEntries, [&](std::optional<Entry> entry) {
    if (!entry) return false;
    bytes += entry->resource.entry.length;
    entries.push_back(*std::move(entry));
    return bytes <= mSize;  // else some bytes would belong to two of them
  });
  if (ended == Row::Error) return Damaged("the list of its fonts and images cannot be read");
  return entries;
}

bool Reader::ReadBytes(Entry& entry) {
  mDatabase->SetLongestValue(static_cast<int>(kMostResourceBytes) + kLongestCacheText);
  auto row = mDatabase->Prepare("SELECT bytes FROM resource WHERE number = ?");
  if (!row || !row->Bind(0, entry.number) || row->Step() != Row::Here) return false;
  auto bytes = row->Blob(0);
  const PanelResource& told = entry.resource.entry;
  if (!bytes || bytes->size() != told.length || Crc32(*bytes) != told.check) return false;
  entry.resource.bytes = *std::move(bytes);
  return true;
}

OrFault<CacheContent> Reader::Read() {
  CacheContent content;
  if (const auto tables = CheckTables(); !tables) return std::unexpected(tables.error());
  if (const auto owner = ReadOwner(content); !owner) return std::unexpected(owner.error());
  const auto counts = ReadCounts();
  if (!counts) return std::unexpected(counts.error());
  auto entries = ReadEntries();
  if (!entries) return std::unexpected(entries.error());

  for (const auto& [kind, count] : *counts) content.Part(kind).emplace();
  std::ranges::sort(*entries, {}, [](const Entry& one) { return std::pair(one.kind, one.place); });
  std::set<std::pair<PanelResourceKind, std::uint16_t>> ids;
  for (Entry& entry : *entries) {
    auto& part = content.Part(entry.kind);
    const bool isNext = part && part->size() == entry.place && ids.insert({entry.kind, entry.resource.entry.id}).second;
    if (!isNext) return Damaged("its fonts and images are not those that it was written with");
    if (!ReadBytes(entry)) return Damaged("the bytes of a font or an image are not those that it was written with");
    part->push_back(std::move(entry.resource));
  }
  for (const auto& [kind, count] : *counts) {
    if (content.Part(kind)->size() != count) return Damaged("fonts or images are missing");
  }
  const bool isSealed = content.owner ? SealOf(content) == mSeal : counts->empty();
  if (!isSealed) return Damaged("what it says of its controller is not what it was written with");
  return content;
}

// Where a page of the table is damaged, the rows before it are found from the front and those behind it from the back.
CacheSalvage Reader::Salvage() {
  if (!CheckTables()) return {};
  std::map<std::int64_t, Entry> found;
  std::uint64_t bytes = 0;
  for (const std::string_view sql : {kEntries, kEntriesBackwards}) {
    const Row ended = ForEachEntry(sql, [&](std::optional<Entry> entry) {
      if (!entry || !found.try_emplace(entry->number, *entry).second) return true;
      bytes += entry->resource.entry.length;
      return bytes <= mSize;
    });
    if (ended == Row::None) break;
  }
  std::set<std::pair<PanelResourceKind, std::uint16_t>> ids;
  CacheSalvage salvage;
  for (auto& [number, entry] : found) {
    if (!ids.insert({entry.kind, entry.resource.entry.id}).second || !ReadBytes(entry)) continue;
    (entry.kind == PanelResourceKind::Font ? salvage.fonts : salvage.images).push_back(std::move(entry.resource));
  }
  return salvage;
}

}  // namespace

std::expected<CacheContent, CacheError> ParseCache(std::string_view bytes, const std::string& name) {
  const auto refused = [&](Fault fault) {
    return std::unexpected(
        CacheError{.fault = fault.fault, .file = {.file = name, .place = {}, .what = std::move(fault.what)}});
  };
  if (const auto good = CheckHead(bytes); !good) return refused(good.error());
  auto content = Reader(bytes).Read();
  if (!content) return refused(std::move(content.error()));
  return *std::move(content);
}

CacheSalvage SalvageCache(std::string_view bytes) {
  const auto good = CheckHead(bytes);
  if (good) return Reader(bytes).Salvage();
  const bool isCut = good.error().fault == CacheFault::Cut && bytes.size() >= kHead;
  const std::size_t page = isCut ? PageSize(bytes) : 0;
  if (page == 0 || bytes.size() < page) return {};
  std::string whole(bytes.substr(0, bytes.size() / page * page));  // ends with its last whole page
  PutBigEndian(whole, kPageCount, static_cast<std::uint32_t>(bytes.size() / page));
  return Reader(whole).Salvage();
}

}  // namespace kv::cache
