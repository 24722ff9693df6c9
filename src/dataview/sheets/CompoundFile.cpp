#include "dataview/sheets/CompoundFile.h"

#include "base/LittleEndian.h"

#include <algorithm>
#include <cstdint>

namespace kv {
namespace {

constexpr std::size_t kSectorSize = 512;
constexpr std::size_t kSmallestStream = 4096;  // smaller ones would stand in sectors of 64 bytes
constexpr std::size_t kEntriesPerSector = kSectorSize / sizeof(std::uint32_t);
constexpr std::size_t kTableSectorsInHeader = 109;

// What stands in the sector table instead of the next sector's number.
constexpr std::uint32_t kFree = 0xFFFFFFFFU;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFEU;
constexpr std::uint32_t kTableSector = 0xFFFFFFFDU;
constexpr std::uint32_t kTableOfTablesSector = 0xFFFFFFFCU;

constexpr std::size_t SectorsFor(std::size_t count, std::size_t perSector) {
  return (count + perSector - 1) / perSector;
}

// The file's sectors in order: the stream, the directory, the sector table, and the table of that table's sectors as
// far as the header has no room for it.
struct Layout {
  explicit Layout(std::size_t streamSize) : stream(SectorsFor(streamSize, kSectorSize)) {
    while (kEntriesPerSector * table < stream + 1 + table + tableOfTables) {  // the tables hold themselves as well
      ++table;
      if (table > kTableSectorsInHeader) {
        tableOfTables = SectorsFor(table - kTableSectorsInHeader, kEntriesPerSector - 1);
      }
    }
  }
  [[nodiscard]] std::uint32_t Directory() const { return static_cast<std::uint32_t>(stream); }
  [[nodiscard]] std::uint32_t Table() const { return Directory() + 1; }
  [[nodiscard]] std::uint32_t TableOfTables() const { return Table() + static_cast<std::uint32_t>(table); }

  std::size_t stream;
  std::size_t table = 0;
  std::size_t tableOfTables = 0;
};

void Fill(std::string& bytes, std::size_t size, char with = '\0') {
  bytes.append(size - std::min(size, bytes.size()), with);
}

std::string Header(const Layout& layout) {
  std::string bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
  Fill(bytes, 24);  // no class
  for (const int word : {0x3E, 3, 0xFFFE, 9, 6}) AppendLittleEndian(bytes, static_cast<std::uint16_t>(word));
  Fill(bytes, 44);
  AppendLittleEndian(bytes, static_cast<std::uint32_t>(layout.table));
  AppendLittleEndian(bytes, layout.Directory());
  AppendLittleEndian(bytes, std::uint32_t{0});
  AppendLittleEndian(bytes, static_cast<std::uint32_t>(kSmallestStream));
  AppendLittleEndian(bytes, kEndOfChain);  // no small sectors
  AppendLittleEndian(bytes, std::uint32_t{0});
  AppendLittleEndian(bytes, layout.tableOfTables > 0 ? layout.TableOfTables() : kEndOfChain);
  AppendLittleEndian(bytes, static_cast<std::uint32_t>(layout.tableOfTables));
  for (std::size_t i = 0; i < std::min(layout.table, kTableSectorsInHeader); ++i) {
    AppendLittleEndian(bytes, layout.Table() + static_cast<std::uint32_t>(i));
  }
  Fill(bytes, kSectorSize, '\xFF');
  return bytes;
}

struct DirectoryEntry {
  std::string_view name;
  char kind;  // 5 root, 2 stream
  std::uint32_t child;
  std::uint32_t firstSector;
  std::size_t size;
};

void AppendEntry(std::string& bytes, const DirectoryEntry& entry) {
  const std::size_t start = bytes.size();
  for (const char letter : entry.name) bytes.append({letter, '\0'});
  Fill(bytes, start + 64);
  AppendLittleEndian(bytes, static_cast<std::uint16_t>(2 * (entry.name.size() + 1)));
  bytes.append({entry.kind, '\x01'});
  AppendLittleEndian(bytes, kFree);  // no neighbours
  AppendLittleEndian(bytes, kFree);
  AppendLittleEndian(bytes, entry.child);
  Fill(bytes, start + 116);  // no class, no times
  AppendLittleEndian(bytes, entry.firstSector);
  AppendLittleEndian(bytes, static_cast<std::uint64_t>(entry.size));
}

std::string Directory(std::string_view streamName, std::size_t streamSize) {
  std::string bytes;
  AppendEntry(bytes, {"Root Entry", 5, 1, kEndOfChain, 0});
  AppendEntry(bytes, {streamName, 2, kFree, 0, streamSize});
  for (int unused = 0; unused < 2; ++unused) {
    Fill(bytes, bytes.size() + 68);
    bytes.append(12, '\xFF');
    Fill(bytes, bytes.size() + 48);
  }
  return bytes;
}

// Where each sector's chain goes on.
std::string SectorTable(const Layout& layout) {
  std::string bytes;
  for (std::size_t i = 1; i < layout.stream; ++i) AppendLittleEndian(bytes, static_cast<std::uint32_t>(i));
  AppendLittleEndian(bytes, kEndOfChain);
  AppendLittleEndian(bytes, kEndOfChain);  // of the directory
  for (std::size_t i = 0; i < layout.table; ++i) AppendLittleEndian(bytes, kTableSector);
  for (std::size_t i = 0; i < layout.tableOfTables; ++i) AppendLittleEndian(bytes, kTableOfTablesSector);
  Fill(bytes, layout.table * kSectorSize, '\xFF');
  return bytes;
}

std::string TableOfTables(const Layout& layout) {
  std::string bytes;
  std::size_t next = kTableSectorsInHeader;
  for (std::size_t sector = 1; sector <= layout.tableOfTables; ++sector) {
    for (std::size_t i = 0; i + 1 < kEntriesPerSector; ++i, ++next) {
      AppendLittleEndian(bytes, next < layout.table ? layout.Table() + static_cast<std::uint32_t>(next) : kFree);
    }
    const bool isLast = sector == layout.tableOfTables;
    AppendLittleEndian(bytes, isLast ? kEndOfChain : layout.TableOfTables() + static_cast<std::uint32_t>(sector));
  }
  return bytes;
}

}  // namespace

std::string CompoundFile(std::string_view streamName, std::string_view stream) {
  const std::size_t size = std::max(stream.size(), kSmallestStream);
  const Layout layout(size);
  std::string file = Header(layout);
  file.reserve(kSectorSize * (2 + layout.stream + layout.table + layout.tableOfTables));
  file += stream;
  Fill(file, kSectorSize * (1 + layout.stream));
  file += Directory(streamName, size);
  file += SectorTable(layout);
  file += TableOfTables(layout);
  return file;
}

}  // namespace kv
