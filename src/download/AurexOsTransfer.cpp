#include "download/AurexOsTransfer.h"

#include <algorithm>
#include <string_view>

#include "base/Crc32.h"
#include "base/LittleEndian.h"
#include "deflate/Deflate.h"
#include "download/AurexPlaces.h"

namespace kv {
namespace {

std::uint32_t Check(const Bytes& data, std::uint32_t before) {
  return Crc32({reinterpret_cast<const char*>(data.data()), data.size()}, before);
}

// Byte 0 "OS", 100, 1; 4 O/S model; 8 version; 10 build; 11 topics; 12 CRC-32 of the data of all topics.
OsTransferHeader HeaderOf(const AurexOsFile& os, const std::vector<AurexOsTopic>& topics) {
  std::uint32_t check = 0;
  for (const AurexOsTopic& topic : topics) check = Check(topic.data, check);
  OsTransferHeader header = {'O', 'S', 100, 1};
  const std::span<std::uint8_t> fields(header);
  std::ranges::copy(std::string_view(os.model).substr(0, 4), header.begin() + 4);
  PutLittleEndian(fields.subspan(8, 2), static_cast<std::uint32_t>(os.number.version));
  PutLittleEndian(fields.subspan(10, 1), static_cast<std::uint32_t>(os.number.build));
  PutLittleEndian(fields.subspan(11, 1), static_cast<std::uint32_t>(topics.size()));
  PutLittleEndian(fields.subspan(12, 4), check);
  return header;
}

OsTransferTopic Pack(const AurexOsTopic& topic, const CompressBlock& compress) {
  constexpr std::size_t kSizes = 8;
  OsTransferTopic packed{.number = topic.number, .name = topic.name, .base = topic.base, .stream = Bytes(kSizes)};
  const auto compressed = topic.isCompressed ? compress(topic.data) : std::nullopt;
  packed.compressionFailed = topic.isCompressed && !compressed;
  const Bytes& sent = compressed && compressed->size() < topic.data.size() ? *compressed : topic.data;
  packed.plainSize = static_cast<std::uint32_t>(topic.data.size());
  packed.sentSize = static_cast<std::uint32_t>(sent.size());
  PutLittleEndian(std::span(packed.stream).first(4), packed.plainSize);
  PutLittleEndian(std::span(packed.stream).subspan(4), packed.sentSize);
  packed.stream.insert(packed.stream.end(), sent.begin(), sent.end());
  return packed;
}

}  // namespace

std::uint64_t StreamBytes(const OsTransfer& transfer) {
  std::uint64_t bytes = 0;
  for (const OsTransferTopic& topic : transfer.topics) bytes += topic.stream.size();
  return bytes;
}

std::uint64_t ChunkCount(const OsTransfer& transfer) {
  std::uint64_t chunks = 0;
  for (const OsTransferTopic& topic : transfer.topics) chunks += (topic.stream.size() + kOsChunk - 1) / kOsChunk;
  return chunks;
}

OsTransfer MakeOsTransfer(const AurexOsFile& os, const FontsFile& fonts) {
  return MakeOsTransfer(os, fonts, [](std::span<const std::uint8_t> bytes) { return Deflate(bytes); });
}

OsTransfer MakeOsTransfer(const AurexOsFile& os, const FontsFile& fonts, const CompressBlock& compress) {
  std::vector<AurexOsTopic> topics = os.topics;
  const AurexPlaces* places = PlacesOf(fonts.model);
  topics.push_back({.number = kFontsTopic,
                    .name = "the system fonts",
                    .base = places == nullptr ? 0 : places->fontsStart,
                    .isCompressed = true,
                    .data = fonts.data});
  OsTransfer transfer{.header = HeaderOf(os, topics), .topics = {}};
  for (const AurexOsTopic& topic : topics) transfer.topics.push_back(Pack(topic, compress));
  return transfer;
}

}  // namespace kv
