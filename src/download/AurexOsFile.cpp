#include "download/AurexOsFile.h"

#include <optional>

#include "base/Hex.h"
#include "download/AurexPlaces.h"
#include "download/FileFields.h"
#include "download/OsFileName.h"
#include "download/ReadDownload.h"

namespace kv {
namespace {

constexpr std::string_view kMagic = "KVOS";
constexpr std::uint32_t kFormat = 1;
constexpr std::size_t kHead = 64;
constexpr std::size_t kEntry = 32;
constexpr std::size_t kCheckAt = 12;
constexpr std::uint32_t kCompressed = 1;                    // the only flag
constexpr std::size_t kLargestFile = std::size_t{4} << 20;  // twice the O/S memory of any controller

std::string AsHex(std::uint32_t address) {
  return "0x" + ToHex(address, 8);
}

// Head and table are checked from the outside in: what a later step reads an earlier one has found to be there.
class Reader {
 public:
  Reader(std::string_view bytes, const std::string& file) : mBytes(bytes), mFaults(file) {}

  std::expected<AurexOsFile, DownloadFileError> Read() {
    using Step = std::optional<DownloadFileError> (Reader::*)();
    for (const Step step : {&Reader::CheckKind, &Reader::CheckWhole, &Reader::ReadHead, &Reader::ReadTopics}) {
      if (auto error = (this->*step)()) return std::unexpected(*std::move(error));
    }
    mOs.stamp = StampOf(mBytes);
    return std::move(mOs);
  }

 private:
  using Fault = std::optional<DownloadFileError>;

  Fault Damaged(const std::string& place, const std::string& what) const {
    return mFaults.Damaged(place, what).error();
  }

  // What is kept for later formats means nothing yet: a file that uses it is not of this one.
  [[nodiscard]] bool IsZero(std::size_t from, std::size_t count) const {
    return mBytes.substr(from, count).find_first_not_of('\0') == std::string_view::npos;
  }

  Fault CheckKind() {
    const bool isOs = mBytes.size() >= kHead && mBytes.starts_with(kMagic);
    if (!isOs) return mFaults.NotLegal("expected an O/S file, which begins with \"KVOS\"").error();
    if (LittleAt(mBytes, 4, 2) == kFormat) return std::nullopt;
    return mFaults.NotLegal("expected format 1, the only one that this program knows").error();
  }

  Fault CheckWhole() {
    const std::uint32_t length = LittleAt(mBytes, 8, 4);
    if (length != mBytes.size()) return Damaged("byte 8", WrongLengthText(length, mBytes.size()));
    if (!HasItsCheck(mBytes, kCheckAt)) return Damaged("byte 12", "its CRC-32 does not fit: it was damaged");
    return std::nullopt;
  }

  Fault ReadHead() {
    mOs.model = TextAt(mBytes, 16, 4);
    mPlaces = PlacesOf(mOs.model);
    if (mPlaces == nullptr) return Damaged("byte 16", "expected the O/S model K220, K222 or K330");
    mFree = mPlaces->osStart;
    const auto version = DigitsAt(mBytes, 20, 3);
    const auto build = DigitsAt(mBytes, 23, 2);
    if (!version || !build) return Damaged("byte 20", "expected three digits of a version and two of a build");
    if (!IsZero(25, 7)) return Damaged("byte 25", "expected seven zero bytes");
    mOs.number = {*version, *build};
    mOs.remark = ShownText(mBytes.substr(32, 32));
    return std::nullopt;
  }

  Fault ReadTopics() {
    const std::size_t count = LittleAt(mBytes, 6, 2);
    if (count < 1 || count > kLastOsTopic) return Damaged("byte 6", "expected 1 to 15 topics");
    std::size_t data = kHead + count * kEntry;
    if (data > mBytes.size()) return Damaged("byte 64", "expected " + std::to_string(count) + " entries of topics");
    for (std::size_t i = 0; i < count; ++i) {
      if (auto error = ReadTopic(kHead + i * kEntry, data)) return error;
    }
    if (data != mBytes.size()) return Damaged("byte " + std::to_string(data), "expected the end of the last topic");
    return std::nullopt;
  }

  // The topic of the entry at `entry`, whose data begin at `data`, which is moved on behind them.
  Fault ReadTopic(std::size_t entry, std::size_t& data) {
    AurexOsTopic topic;
    const std::string place = "byte " + std::to_string(entry);
    topic.number = static_cast<int>(LittleAt(mBytes, entry, 2));
    const int before = mOs.topics.empty() ? 0 : mOs.topics.back().number;
    if (topic.number <= before || topic.number > kLastOsTopic) {
      return Damaged(place, "expected a topic's number from " + std::to_string(before + 1) + " to 15");
    }
    const std::uint32_t flags = LittleAt(mBytes, entry + 2, 2);
    if ((flags & ~kCompressed) != 0) return Damaged(place, "expected no other flag than 1, compressed");
    topic.isCompressed = flags == kCompressed;
    topic.base = LittleAt(mBytes, entry + 4, 4);
    if (!IsZero(entry + 12, 4)) return Damaged(place, "expected zero bytes from 12 to 15 of its entry");
    const std::uint32_t length = LittleAt(mBytes, entry + 8, 4);
    if (length == 0 || length > mBytes.size() - data) {
      return Damaged(place, "expected 1 to " + std::to_string(mBytes.size() - data) + " bytes of data");
    }
    if (topic.base < mFree || topic.base >= mPlaces->osEnd || length > mPlaces->osEnd - topic.base) {
      return Damaged(place, "expected a place from " + AsHex(mFree) + " to " + AsHex(mPlaces->osEnd - 1));
    }
    mFree = topic.base + length;
    topic.name = ShownText(mBytes.substr(entry + 16, 16));
    const std::string_view held = mBytes.substr(data, length);
    topic.data.assign(held.begin(), held.end());
    data += length;
    mOs.dataBytes += length;
    mOs.topics.push_back(std::move(topic));
    return std::nullopt;
  }

  std::string_view mBytes;
  FaultsOf mFaults;
  const AurexPlaces* mPlaces = nullptr;
  std::uint32_t mFree = 0;  // first address behind the topics so far
  AurexOsFile mOs;
};

}  // namespace

std::expected<AurexOsFile, DownloadFileError> ParseAurexOsFile(std::string_view bytes, const std::string& file) {
  return Reader(bytes, file).Read();
}

std::expected<AurexOsFile, DownloadFileError> ReadAurexOsFile(const std::filesystem::path& file) {
  const auto bytes = ReadDownloadBytes(file, kLargestFile);
  if (!bytes) return std::unexpected(bytes.error());
  auto os = ParseAurexOsFile(*bytes, Utf8FromPath(file));
  if (!os) return os;
  const std::string name = GetFileName(file);
  if (AurexOsTypeIn(name) == "Aurex" + os->model && AurexOsNumberIn(name) == os->number) return os;
  return FaultsOf(Utf8FromPath(file))
      .Damaged("its name",
               "expected one that ends with \"" + AurexOsName(os->model, os->number) + "\", as what is in it");
}

}  // namespace kv
