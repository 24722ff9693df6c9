#include "help/ChmDirectory.h"

#include <optional>

#include "base/LittleEndian.h"

namespace kv {
namespace {

// The head of the file, of its directory, and of the two kinds of blocks in that: lengths and places of fields.
constexpr std::size_t kHeadLength = 0x60;
constexpr std::size_t kDirectoryField = 0x48;
constexpr std::size_t kDataField = 0x58;
constexpr std::size_t kDirectoryHeadLength = 0x54;
constexpr std::size_t kListHeadLength = 0x14;
constexpr std::size_t kIndexHeadLength = 0x08;

constexpr std::uint32_t kShortestBlock = 0x200;
constexpr std::uint32_t kLongestBlock = 0x10000;
constexpr std::uint32_t kMostBlocks = 4096;
constexpr std::uint64_t kLongestName = 512;

constexpr std::string_view kControlData = "::DataSpace/Storage/MSCompressed/ControlData";
constexpr std::string_view kResetTable =
    "::DataSpace/Storage/MSCompressed/Transform/{7FC28940-9D31-11D0-9B27-00A0C91E9C7C}/InstanceData/ResetTable";

std::uint32_t Long(std::string_view bytes, std::size_t at) {
  return LittleEndianAt<std::uint32_t>(bytes, at);
}

// Seven bits a byte, the highest first; the last byte is below 128.
std::optional<std::uint64_t> TakeNumber(std::string_view& bytes) {
  constexpr int kMostBytes = 8;
  std::uint64_t number = 0;
  for (int i = 0; i < kMostBytes && !bytes.empty(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    number = number << 7U | (byte & 0x7FU);
    if (byte < 0x80) return number;
  }
  return std::nullopt;
}

std::optional<std::string_view> TakeName(std::string_view& bytes) {
  const auto length = TakeNumber(bytes);
  if (!length || *length > kLongestName || *length > bytes.size()) return std::nullopt;
  const std::string_view name = bytes.substr(0, *length);
  bytes.remove_prefix(*length);
  return name;
}

class Reader {
 public:
  explicit Reader(std::string_view file) : mFile(file) {}

  std::expected<ChmDirectory, std::string> Read() {
    if (const char* wrong = ReadHeads()) return std::unexpected(wrong);
    for (std::uint32_t block = 0; block < mBlocks; ++block) {
      if (!ReadBlock(block)) return std::unexpected("its directory is damaged");
    }
    if (!CanBeUnpacked()) return std::unexpected("its compressed part is damaged");
    return std::move(mDirectory);
  }

 private:
  const char* ReadHeads() {
    constexpr const char* kNone = "it is no help file";
    constexpr const char* kOutside = "its directory does not lie inside of it";
    if (!mFile.starts_with("ITSF") || Long(mFile, 4) != 3 || Long(mFile, 8) != kHeadLength) return kNone;
    const auto begin = LittleEndianAt<std::uint64_t>(mFile, kDirectoryField);
    if (begin > mFile.size() || mFile.size() - begin < kDirectoryHeadLength) return kOutside;
    const std::string_view head = mFile.substr(begin, kDirectoryHeadLength);
    if (!head.starts_with("ITSP") || Long(head, 4) != 1 || Long(head, 8) != kDirectoryHeadLength) return kNone;
    mBlockLength = Long(head, 16);
    mBlocks = Long(head, 44);
    mBegin = begin + kDirectoryHeadLength;
    if (mBlockLength < kShortestBlock || mBlockLength > kLongestBlock || mBlocks > kMostBlocks) return kOutside;
    if (mFile.size() - mBegin < std::uint64_t{mBlockLength} * mBlocks) return kOutside;
    const std::uint32_t root = Long(head, 28);
    if (Long(head, 32) >= mBlocks || (root >= mBlocks && root != kNoBlock)) return kOutside;
    mData = LittleEndianAt<std::uint64_t>(mFile, kDataField);
    return mData <= mFile.size() ? nullptr : "its content does not lie inside of it";
  }

  // Lists name the next list, which lies behind them, and indexes name blocks that lie before them: so the way through
  // the blocks has an end.
  bool ReadBlock(std::uint32_t number) {
    const std::string_view block = mFile.substr(mBegin + std::uint64_t{mBlockLength} * number, mBlockLength);
    const bool isList = block.starts_with("PMGL");
    if (!isList && !block.starts_with("PMGI")) return false;
    const std::size_t head = isList ? kListHeadLength : kIndexHeadLength;
    const std::uint32_t unused = Long(block, 4);
    if (unused > mBlockLength - head) return false;
    const std::string_view entries = block.substr(head, mBlockLength - head - unused);
    if (!isList) return ReadIndex(entries, number);
    const std::uint32_t next = Long(block, 16);
    if (next != kNoBlock && (next <= number || next >= mBlocks)) return false;
    return ReadList(entries);
  }

  bool ReadList(std::string_view entries) {
    while (!entries.empty()) {
      const auto name = TakeName(entries);
      const auto section = TakeNumber(entries);
      const auto start = TakeNumber(entries);
      const auto length = TakeNumber(entries);
      if (!name || !section || !start || !length || *section > 1) return false;
      mDirectory[std::string(*name)] = {*section, *start, *length};
    }
    return true;
  }

  static bool ReadIndex(std::string_view entries, std::uint32_t number) {
    while (!entries.empty()) {
      const auto name = TakeName(entries);
      const auto block = TakeNumber(entries);
      if (!name || !block || *block >= number) return false;
    }
    return true;
  }

  [[nodiscard]] std::string_view Plain(std::string_view name) const {
    const auto found = mDirectory.find(name);
    if (found == mDirectory.end() || found->second.section != 0) return {};
    const ChmObject& object = found->second;
    const std::uint64_t room = mFile.size() - mData;
    if (object.start > room || object.length > room - object.start) return {};
    return mFile.substr(mData + object.start, object.length);
  }

  // The window of the compression in units of 32 KiB, a power of two up to 2 MiB; how often it begins anew in units of
  // half a window; blocks of 32 KiB.
  [[nodiscard]] bool CanBeUnpacked() const {
    constexpr std::uint32_t kBlock = 0x8000;
    constexpr std::uint32_t kMostUnits = 64;
    const std::string_view control = Plain(kControlData);
    const std::string_view table = Plain(kResetTable);
    if (control.size() < 24 || table.size() < 40 || control.substr(4, 4) != "LZXC" || Long(control, 8) != 2)
      return false;
    const std::uint32_t interval = Long(control, 12);
    const std::uint32_t window = Long(control, 16);
    const std::uint32_t perReset = Long(control, 20);
    const bool isWindow = window > 0 && window <= kMostUnits && (window & (window - 1)) == 0;
    if (!isWindow || interval == 0 || interval > kMostUnits || perReset == 0 || perReset > kMostUnits) return false;
    if (2 * interval / window == 0 || interval * kBlock % (window * kBlock / 2) != 0) return false;
    const std::uint64_t most = (table.size() - 40) / 8;
    return LittleEndianAt<std::uint64_t>(table, 32) == kBlock && Long(table, 4) <= most && Long(table, 12) == 40;
  }

  static constexpr std::uint32_t kNoBlock = 0xFFFFFFFF;

  std::string_view mFile;
  std::uint32_t mBlockLength = 0;
  std::uint32_t mBlocks = 0;
  std::uint64_t mBegin = 0;  // of the blocks
  std::uint64_t mData = 0;   // of section 0
  ChmDirectory mDirectory;
};

}  // namespace

std::expected<ChmDirectory, std::string> ReadChmDirectory(std::string_view file) {
  return Reader(file).Read();
}

}  // namespace kv
