#include "dataview/sheets/CompoundReader.h"

#include <algorithm>

#include "base/LittleEndian.h"
#include "dataview/sheets/SheetBuilder.h"

namespace kv {
namespace {

constexpr std::string_view kMagic("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kTableSectorsInHeader = 109;
constexpr std::size_t kSmallSectorSize = 64;
constexpr std::size_t kEntrySize = 128;
constexpr std::uint32_t kLastSector = 0xFFFFFFFAU;  // greater numbers have meanings of their own

std::uint32_t U32(std::string_view bytes, std::size_t at) {
  return LittleEndianAt<std::uint32_t>(bytes, at);
}

std::vector<std::uint32_t> Numbers(std::string_view bytes) {
  std::vector<std::uint32_t> numbers;
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) numbers.push_back(U32(bytes, at));
  return numbers;
}

}  // namespace

bool CompoundReader::IsCompound(std::string_view content) {
  return content.starts_with(kMagic);
}

CompoundReader::CompoundReader(std::string_view content) : mContent(content) {}

std::expected<CompoundReader, SheetError> CompoundReader::Open(std::string_view content) {
  CompoundReader reader(content);
  if (auto read = reader.ReadTable(); !read) return std::unexpected(read.error());
  if (auto read = reader.ReadDirectory(); !read) return std::unexpected(read.error());
  return reader;
}

std::expected<void, SheetError> CompoundReader::ReadTable() {
  const auto shift = LittleEndianAt<std::uint16_t>(mContent, 30);
  if (mContent.size() < kHeaderSize || (shift != 9 && shift != 12)) {
    return SheetFailure("header", "it is no compound file of a known kind");
  }
  mSectorSize = std::size_t{1} << shift;
  mSectors = mContent.size() / mSectorSize;

  std::vector<std::uint32_t> tableSectors = Numbers(mContent.substr(76, 4 * kTableSectorsInHeader));
  std::uint32_t more = U32(mContent, 68);
  for (std::size_t steps = 0; more <= kLastSector && steps < mSectors; ++steps) {
    const std::vector<std::uint32_t> numbers = Numbers(Sector(more));
    if (numbers.empty()) break;
    tableSectors.insert(tableSectors.end(), numbers.begin(), numbers.end() - 1);
    more = numbers.back();
  }
  for (const std::uint32_t sector : tableSectors) {
    if (sector > kLastSector || mNext.size() >= mSectors) break;
    const std::vector<std::uint32_t> numbers = Numbers(Sector(sector));
    mNext.insert(mNext.end(), numbers.begin(), numbers.end());
  }
  return {};
}

std::expected<void, SheetError> CompoundReader::ReadDirectory() {
  constexpr std::size_t kLongestName = 64;
  const auto bytes = Chain(U32(mContent, 48), "directory");
  if (!bytes) return std::unexpected(bytes.error());
  for (std::size_t at = 0; at + kEntrySize <= bytes->size(); at += kEntrySize) {
    const std::string_view entry = std::string_view(*bytes).substr(at, kEntrySize);
    const std::size_t length = std::min<std::size_t>(LittleEndianAt<std::uint16_t>(entry, 64), kLongestName);
    std::string name;
    for (std::size_t i = 0; i + 2 < length; i += 2) name += entry[i];
    if (entry[66] == 5) mSmallSectors = U32(entry, 116);
    if (entry[66] == 2) mStreams.push_back({std::move(name), U32(entry, 116), U32(entry, 120)});
  }
  return {};
}

std::string_view CompoundReader::Sector(std::uint32_t number) const {
  if (number >= mSectors) return {};
  const std::size_t at = (std::size_t{number} + 1) * mSectorSize;
  return at < mContent.size() ? mContent.substr(at, mSectorSize) : std::string_view();
}

std::expected<std::string, SheetError> CompoundReader::Chain(std::uint32_t first, const std::string& what) const {
  std::string bytes;
  std::size_t steps = 0;
  for (std::uint32_t sector = first; sector <= kLastSector; sector = mNext[sector]) {
    if (sector >= mNext.size() || ++steps > mSectors) return SheetFailure(what, "its sectors are damaged");
    const std::string_view piece = Sector(sector);
    if (piece.empty()) return SheetFailure(what, "the file ends before it does");
    bytes += piece;
  }
  return bytes;
}

std::expected<std::string, SheetError> CompoundReader::SmallStream(const Entry& entry) const {
  const auto sectors = Chain(mSmallSectors, entry.name);
  if (!sectors) return sectors;
  const auto table = Chain(U32(mContent, 60), entry.name);
  if (!table) return table;
  const std::vector<std::uint32_t> next = Numbers(*table);
  std::string bytes;
  for (std::uint32_t sector = entry.firstSector; bytes.size() < entry.size; sector = next[sector]) {
    const std::size_t at = std::size_t{sector} * kSmallSectorSize;
    if (sector >= next.size() || at >= sectors->size()) return SheetFailure(entry.name, "its sectors are damaged");
    bytes += sectors->substr(at, kSmallSectorSize);
  }
  return bytes;
}

const CompoundReader::Entry* CompoundReader::Find(std::string_view streamName) const {
  const auto found = std::ranges::find(mStreams, streamName, &Entry::name);
  return found == mStreams.end() ? nullptr : &*found;
}

bool CompoundReader::Has(std::string_view streamName) const {
  return Find(streamName) != nullptr;
}

std::expected<std::string, SheetError> CompoundReader::Stream(std::string_view streamName) const {
  const Entry* entry = Find(streamName);
  if (entry == nullptr) return SheetFailure(std::string(streamName), "it is not in the file");
  const std::size_t smallest = U32(mContent, 56);
  auto bytes = entry->size < smallest ? SmallStream(*entry) : Chain(entry->firstSector, entry->name);
  if (!bytes) return bytes;
  if (bytes->size() < entry->size) return SheetFailure(entry->name, "the file ends before it does");
  bytes->resize(entry->size);
  return bytes;
}

}  // namespace kv
