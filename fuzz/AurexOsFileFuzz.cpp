// Any bytes as an O/S of the Aurex family: the topics that are taken rise, lie in the controller's O/S area without
// overlapping, and fill the file; a transfer can be made of them.

#include <cstdint>
#include <optional>
#include <string>

#include "download/AurexOsTransfer.h"
#include "download/AurexPlaces.h"
#include "fuzz/MendedCheck.h"
#include "fuzz/Require.h"

namespace {

void CheckTopics(const kv::AurexOsFile& os, std::size_t fileSize) {
  const kv::AurexPlaces* places = kv::PlacesOf(os.model);
  Require(places != nullptr, "the model is known");
  std::uint64_t free = places->osStart;
  int before = 0;
  std::size_t size = 64;
  for (const kv::AurexOsTopic& topic : os.topics) {
    Require(topic.number > before && topic.number <= kv::kLastOsTopic, "the numbers rise");
    Require(!topic.data.empty() && topic.base >= free, "the places rise");
    before = topic.number;
    free = std::uint64_t{topic.base} + topic.data.size();
    size += 32 + topic.data.size();
  }
  Require(free <= places->osEnd, "the last topic ends inside");
  Require(size == fileSize, "the topics fill the file");
}

void Check(const std::string& bytes) {
  const auto os = kv::ParseAurexOsFile(bytes, "fuzz");
  if (!os) {
    Require(!os.error().where.what.empty(), "a refused file is refused with the reason");
    return;
  }
  Require(os->number.version >= 0 && os->number.version <= 999 && os->number.build <= 99, "the number has its digits");
  CheckTopics(*os, bytes.size());
  kv::FontsFile fonts;
  fonts.model = os->model;
  fonts.data = {1};
  const auto transfer = kv::MakeOsTransfer(*os, fonts, [](auto) { return std::optional(kv::Bytes{1}); });
  Require(transfer.topics.size() == os->topics.size() + 1, "every topic is sent");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  Check(bytes);
  Check(Mended(bytes, 8, 0, 12));
  return 0;
}
