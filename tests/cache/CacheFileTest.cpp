// Colour cache files: what is read is what was written, and nothing that is damaged, foreign or hostile is taken for
// whole.

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/cache/SqliteDatabase.h"
#include "base/Crc32.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::cache {
namespace {

namespace fs = std::filesystem;

CachedResource Resource(std::uint16_t id, std::string name, std::string bytes) {
  const auto length = static_cast<std::uint32_t>(bytes.size());
  return {.entry = {.id = id, .length = length, .check = Crc32(bytes), .name = std::move(name)},
          .readAt = "2026-11-22 15:30:12 +00:00",
          .bytes = std::move(bytes)};
}

CacheContent Sample() {
  return {.owner = CacheOwner{.version = {"K670-67-C30", "67", "HW 1.0;BT 1.2;FL 2.0;O/S 1.10;", "19"},
                              .serialNumber = 0xFEDCBA98,
                              .project = "F\xFCller\x81"},
          .savedAt = "2026-11-22 15:31:00 +00:00",
          .fonts = CachePart{Resource(7, "Sans", "font seven"), Resource(0xFFFF, "", std::string(9000, 'f'))},
          .images = CachePart{Resource(7, "Pumpe \x80", std::string("im\0age", 6)), Resource(2, "none", "")}};
}

TEST(CacheFile, ComesBackAsItWasWritten) {
  const TemporaryFolder folder;
  const fs::path file = folder.Path() / "plant.ktc";
  for (const CacheContent& content : {Sample(), CacheContent{}, CacheContent{.owner = Sample().owner},
                                      CacheContent{.owner = Sample().owner, .images = CachePart{}}}) {
    ASSERT_TRUE(SaveCacheFile(file, content));
    EXPECT_EQ(ReadCacheFile(file), content);
  }
  EXPECT_EQ(ReadCacheFile(folder.Path() / "none.ktc").error().fault, CacheFault::Missing);
  EXPECT_EQ(ReadCacheFile(folder.Path()).error().fault, CacheFault::Unreadable);
  // The empty cache that is installed with the program.
  EXPECT_EQ(ReadCacheFile(fs::path(KV_TEST_DATA) / "../runtime/TP_Temp/TP_Temp_1"), CacheContent{});
}

TEST(CacheFile, IsRefusedWhereverItIsCut) {
  const std::string whole = CacheBytes(Sample()).value();
  for (std::size_t size = 0; size < whole.size(); size += size < 200 ? 1 : 97) {
    EXPECT_EQ(ParseCache(whole.substr(0, size), "cut").error().fault, CacheFault::Cut) << size;
  }
  EXPECT_EQ(ParseCache(whole + "more", "long").error().fault, CacheFault::Damaged);
}

TEST(CacheFile, IsItselfOrRefusedWhicheverByteIsDamaged) {
  const std::string whole = CacheBytes(Sample()).value();
  int refused = 0;
  for (std::size_t at = 0; at < whole.size(); at += at < 200 ? 1 : 23) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x40);
    const auto content = ParseCache(damaged, "damaged");
    refused += content ? 0 : 1;
    ASSERT_EQ(content.value_or(Sample()), Sample()) << at;
    for (const CachedResource& one : SalvageCache(damaged).fonts) ASSERT_EQ(Crc32(one.bytes), one.entry.check) << at;
  }
  EXPECT_GT(refused, 50);
}

// A file as somebody else would write it, from the page on file formats alone; then what else is done to it.
std::string Written(const std::string& change) {
  auto database = SqliteDatabase::MakeEmpty().value();
  const std::string sql =
      "PRAGMA application_id = 1263813425; PRAGMA user_version = 1;"
      "CREATE TABLE controller (model TEXT, hardware_code TEXT, os_version TEXT, os_build TEXT, "
      "serial_number INTEGER, project TEXT, saved_at TEXT, seal INTEGER);"
      "CREATE TABLE part (kind INTEGER PRIMARY KEY, count INTEGER);"
      "CREATE TABLE resource (number INTEGER PRIMARY KEY, kind INTEGER, place INTEGER, id INTEGER, "
      "name TEXT, length INTEGER, crc32 INTEGER, read_at TEXT, bytes BLOB);"
      "INSERT INTO controller VALUES ('K670', '67', 'os', '19', 5, 'Mill', 'now', 0);"
      "INSERT INTO part VALUES (1, 2);"
      "INSERT INTO resource VALUES (1, 1, 0, 7, 'Sans', 9, 3421780262, 'then', x'313233343536373839');"
      "INSERT INTO resource VALUES (2, 1, 1, 8, 'Serif', 0, 0, 'then', x'');";
  // The seal: texts with a zero byte behind each, the numbers with their least significant byte first.
  using namespace std::string_literals;
  const std::string sealed =
      "K670\0"
      "67\0"
      "os\0"
      "19\0"
      "\5\0\0\0"
      "Mill\0"
      "now\0"
      "\1"
      "\2\0\0\0"
      "\7\0"
      "\x9\0\0\0"
      "\x26\x39\xF4\xCB"
      "Sans\0"
      "then\0"
      "\x8\0"
      "\0\0\0\0"
      "\0\0\0\0"
      "Serif\0"
      "then\0"s;
  const std::string seal = "UPDATE controller SET seal = " + std::to_string(Crc32(sealed)) + ";";
  EXPECT_TRUE(database.Execute(sql + seal + change)) << change;
  return database.Serialize().value();
}

struct Hostile {
  const char* change;
  CacheFault fault;
  std::size_t whole = 0;  // fonts that a repair would keep
};

TEST(CacheFile, TakesNothingFromHostileHands) {
  const auto good = ParseCache(Written(""), "written");
  ASSERT_TRUE(good) << good.error().Text();
  EXPECT_EQ(good->owner->project, "Mill");
  EXPECT_EQ(good->fonts->front().bytes, "123456789");
  EXPECT_FALSE(good->images);
  using enum CacheFault;
  // clang-format off
  const Hostile rows[] = {
      {"PRAGMA application_id = 7", NoCache},
      {"PRAGMA user_version = 2", Newer},
      {"PRAGMA user_version = 0", Damaged},
      {"CREATE VIEW v AS SELECT 1", NoCache},
      {"CREATE TRIGGER t AFTER INSERT ON part BEGIN DELETE FROM part; END", NoCache},
      {"CREATE TABLE other (a)", NoCache},
      {"CREATE INDEX i ON resource (id)", NoCache},
      {"DROP TABLE part; CREATE VIEW part AS SELECT 1 AS kind, 2 AS count", NoCache},
      {"ALTER TABLE part ADD COLUMN more TEXT", NoCache},
      {"DROP TABLE part", Damaged},
      {"DELETE FROM controller", Damaged, 2},
      {"INSERT INTO controller SELECT * FROM controller", Damaged, 2},
      {"UPDATE controller SET model = 'K330'", Damaged, 2},
      {"UPDATE controller SET serial_number = 6", Damaged, 2},
      {"UPDATE controller SET serial_number = -1", Damaged, 2},
      {"UPDATE controller SET model = x'4B363730'", Damaged, 2},
      {"UPDATE controller SET model = 'K670' || char(0) || 'x'", Damaged, 2},
      {"UPDATE controller SET model = char(8486)", Damaged, 2},  // no Windows-1252
      {"UPDATE controller SET model = hex(zeroblob(4000000))", Damaged, 2},
      {"UPDATE part SET count = 1", Damaged, 2},
      {"UPDATE part SET count = 2000000000", Damaged, 2},
      {"UPDATE part SET kind = 2", Damaged, 2},
      {"INSERT INTO part VALUES (2, 0)", Damaged, 2},
      {"DELETE FROM part", Damaged, 2},
      {"DELETE FROM resource WHERE number = 2", Damaged, 1},
      {"UPDATE resource SET length = 8 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET length = -9 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET length = 2147483648 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET length = 20000000, bytes = zeroblob(20000000) WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET crc32 = crc32 + 1 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET crc32 = 'x' WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET bytes = '123456789' WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET bytes = NULL WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET kind = 3 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET id = 65536 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET id = 8 WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET place = 1 WHERE number = 1", Damaged, 2},
      {"UPDATE resource SET name = 'Other' WHERE number = 1", Damaged, 2},
      {"UPDATE resource SET name = hex(zeroblob(50)) WHERE number = 1", Damaged, 1},
      {"UPDATE resource SET name = hex(zeroblob(9000000)) WHERE number = 2", Damaged, 1},
      {"UPDATE resource SET read_at = 'never' WHERE number = 1", Damaged, 2},
  };
  // clang-format on
  for (const Hostile& row : rows) {
    const std::string bytes = Written(row.change);
    const auto content = ParseCache(bytes, "hostile");
    ASSERT_FALSE(content) << row.change;
    EXPECT_EQ(content.error().fault, row.fault) << row.change << ": " << content.error().Text();
    EXPECT_EQ(SalvageCache(bytes).fonts.size(), row.whole) << row.change;
  }
  std::string logged = Written("");
  logged[18] = logged[19] = 2;  // as if another file beside it held the newest of it
  EXPECT_EQ(ParseCache(logged, "logged").error().fault, Damaged);
}

TEST(CacheFile, KeepsWhatIsWholeOfACutOne) {
  CacheContent many{.owner = Sample().owner, .fonts = CachePart{}};
  for (std::uint16_t id = 0; id < 60; ++id)
    many.fonts->push_back(Resource(id, "x", std::string(3000, char('a' + id % 26))));
  const std::string whole = CacheBytes(many).value();
  EXPECT_EQ(SalvageCache(whole).fonts.size(), 60U);
  const std::size_t kept = SalvageCache(whole.substr(0, whole.size() / 2)).fonts.size();
  EXPECT_GT(kept, 20U);
  EXPECT_LT(kept, 40U);
  std::string hole = whole;
  hole.replace(whole.size() / 2, 4096, 4096, '\xFF');
  EXPECT_GT(SalvageCache(hole).fonts.size(), 50U) << "before it and behind it";
}

TEST(CacheFile, StaysAsItWasWhereItCannotBeWritten) {
  const TemporaryFolder folder;
  const fs::path file = folder.Path() / "plant.ktc";
  ASSERT_TRUE(SaveCacheFile(file, CacheContent{}));
  CacheContent twice = Sample();
  twice.fonts->push_back(twice.fonts->front());
  CacheContent unfit = Sample();
  unfit.images->front().bytes += "!";
  CacheContent nobodys = Sample();
  nobodys.owner.reset();
  for (const CacheContent& bad : {twice, unfit, nobodys}) EXPECT_FALSE(SaveCacheFile(file, bad));
  EXPECT_EQ(ReadCacheFile(file), CacheContent{});
}

}  // namespace
}  // namespace kv::cache
