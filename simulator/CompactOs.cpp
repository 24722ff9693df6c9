#include "simulator/CompactOs.h"

#include <algorithm>
#include <string>

#include "base/Crc32.h"
#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kFlashSize = std::size_t{1} << 20;  // more than any image has
constexpr std::uint8_t kErased = 255;
constexpr std::string_view kMagic = "KOSI";
constexpr std::size_t kNameSize = 12;  // "KOSI", model (3), "v", version digits (4)
constexpr std::size_t kLengthAt = 12;  // length and CRC-32 of the image, 4 bytes each; those of the check count as zero
constexpr std::size_t kCheckAt = 16;
constexpr std::size_t kBlock = 64;

// "4602": version 4.60, build 2.
std::optional<OsVersion> VersionIn(std::string_view header, const Model& model) {
  if (!header.starts_with(std::string(kMagic) + std::string(model.osModel) + "v")) return std::nullopt;
  const std::string_view digits = header.substr(kNameSize - 4, 4);
  if (!std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) return std::nullopt;
  return OsVersion{std::string(digits.substr(0, 1)) + "." + std::string(digits.substr(1, 2)), digits[3] - '0'};
}

}  // namespace

void CompactOs::Erase() {
  mFlash.assign(kFlashSize, kErased);
}

Result<void> CompactOs::Write(std::uint32_t address, std::string_view block) {
  if (!IsErased()) return Refuse(Refusal::FlashError);
  if (address > mFlash.size() || block.size() > mFlash.size() - address) return Refuse(Refusal::OutsideMemory);
  const bool isWrongImage = address == 0 && block.size() >= kNameSize && !VersionIn(block, mModel);
  if (isWrongImage) return Refuse(Refusal::NotTogether);
  const auto place = mFlash.begin() + address;
  const bool fits = std::equal(block.begin(), block.end(), place, [](char wanted, std::uint8_t held) {
    return held == kErased || held == static_cast<std::uint8_t>(wanted);
  });
  if (!fits) return Refuse(Refusal::FlashError);
  std::ranges::copy(block, place);
  return {};
}

std::optional<OsVersion> CompactOs::NewVersion() const {
  if (!IsErased()) return std::nullopt;
  const std::string_view flash(reinterpret_cast<const char*>(mFlash.data()), mFlash.size());
  const std::uint32_t length = LittleAt(flash, kLengthAt);
  if (length < kBlock || length > flash.size()) return std::nullopt;
  std::string image(flash.substr(0, length));
  const std::uint32_t check = LittleAt(image, kCheckAt);
  PutLittle(image.data() + kCheckAt, 0, 4);
  return kv::Crc32(image) == check ? VersionIn(image, mModel) : std::nullopt;
}

}  // namespace sim
