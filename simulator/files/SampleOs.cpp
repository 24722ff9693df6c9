#include <algorithm>
#include <array>

#include "simulator/FlashMap.h"
#include "simulator/LittleEndian.h"
#include "simulator/files/SampleBytes.h"
#include "simulator/files/SampleFiles.h"

namespace sim {
namespace {

std::size_t SizeOf(const FlashArea& area) {
  return area.end - area.first;
}

// The three digits of a version in a name: one major, two minor.
std::expected<int, std::string> NameVersion(const OsVersion& os) {
  const bool isGood = os.number.size() == 4 && os.number[1] == '.' && VersionNumber(os) <= 999;
  if (!isGood) return std::unexpected("a version of the form 4.60 was expected, not " + os.number);
  return VersionNumber(os);
}

std::string SizeFault(std::size_t most) {
  return "1 to " + std::to_string(most) + " bytes were expected";
}

struct Part {
  std::string_view name;
  std::size_t percent;  // of the whole
  bool isCompressed;
};

constexpr std::array kParts = {Part{"kernel", 60, true}, Part{"drivers", 30, true}, Part{"tables", 10, false}};

// Head of 64 bytes, an entry of 32 bytes for each part, the parts.
FileOrFault MakeAurexOs(const Model& model, const SampleOs& sample) {
  const auto version = NameVersion(sample.os);
  if (!version) return std::unexpected(version.error());
  const FlashArea area = FindFlashMap(model.osModel)->os;
  constexpr std::size_t kLeast = 100;  // so that no part is empty
  if (sample.size < kLeast || sample.size > SizeOf(area))
    return std::unexpected("100 bytes or more; " + SizeFault(SizeOf(area)));

  constexpr std::size_t kLengthAt = 8;
  constexpr std::size_t kCheckAt = 12;
  const std::string code = SampleBytes(sample.size, sample.seed);
  std::string file = "KVOS";
  AppendLittle(file, 1, 2);
  AppendLittle(file, kParts.size(), 2);
  file += Padded("", 8) + Padded(model.osModel, 4) + Digits(*version, 3) + Digits(sample.os.build, 2);
  file += Padded("", 7) + Padded(sample.remark, 32);
  std::size_t place = 0;
  for (std::size_t i = 0; i < kParts.size(); ++i) {
    const bool isLast = i + 1 == kParts.size();
    const std::size_t length = isLast ? sample.size - place : sample.size * kParts[i].percent / 100;
    AppendLittle(file, static_cast<std::uint32_t>(i + 1), 2);
    AppendLittle(file, kParts[i].isCompressed ? 1 : 0, 2);
    AppendLittle(file, area.first + static_cast<std::uint32_t>(place), 4);
    AppendLittle(file, static_cast<std::uint32_t>(length), 4);
    file += Padded("", 4) + Padded(kParts[i].name, 16);
    place += length;
  }
  file += code;
  PutLittle(file.data() + kLengthAt, static_cast<std::uint32_t>(file.size()), 4);
  PutCheck(file, kCheckAt);
  return file;
}

// The image as it lies in the flash: a head of 64 bytes and the code, filled up to whole blocks.
FileOrFault MakeCompactOs(const Model& model, const SampleOs& sample) {
  constexpr std::size_t kBlock = 64;
  constexpr std::size_t kCheckAt = 16;
  const auto version = NameVersion(sample.os);
  if (!version) return std::unexpected(version.error());
  if (sample.os.build > 9) return std::unexpected("the build of a compact O/S is 0 to 9");
  const std::size_t most = model.osModel == "Q50" ? std::size_t{1} << 20 : std::size_t{1} << 16;
  const std::size_t size = (sample.size + kBlock - 1) / kBlock * kBlock;
  if (size == 0 || size > most) return std::unexpected(SizeFault(most));

  std::string image = "KOSI" + std::string(model.osModel) + "v" + Digits(*version, 3) + Digits(sample.os.build, 1);
  AppendLittle(image, static_cast<std::uint32_t>(size), 4);
  image += Padded("", 4) + Padded(sample.remark, 44);
  image += SampleBytes(std::max(sample.size, kBlock) - kBlock, sample.seed);
  image.resize(size, '\xFF');
  PutCheck(image, kCheckAt);
  return image;
}

}  // namespace

FileOrFault MakeOs(const Model& model, const SampleOs& sample) {
  return model.family == Family::Aurex ? MakeAurexOs(model, sample) : MakeCompactOs(model, sample);
}

std::string OsFileName(const Model& model, const OsVersion& os) {
  const std::string version = Digits(VersionNumber(os), 3);
  if (model.family == Family::Compact) return std::string(model.osModel) + "v" + version + Digits(os.build, 1) + ".OSI";
  return "Aurex" + std::string(model.osModel) + "v" + version + Digits(os.build, 2) + ".kos";
}

// Head of 16 bytes, then the fonts.
FileOrFault MakeFonts(const Model& model, const SampleOs& sample) {
  constexpr std::size_t kCheckAt = 12;
  if (model.family != Family::Aurex) return std::unexpected("a compact controller takes no fonts");
  const auto version = NameVersion(sample.os);
  if (!version) return std::unexpected(version.error());
  if (sample.os.build > 9) return std::unexpected("the build of fonts is 0 to 9");
  const std::size_t most = SizeOf(FindFlashMap(model.osModel)->fonts);
  if (sample.size == 0 || sample.size > most) return std::unexpected(SizeFault(most));
  std::string file = "KF" + std::string(model.osModel);
  AppendLittle(file, static_cast<std::uint32_t>(*version * 10 + sample.os.build), 2);
  AppendLittle(file, static_cast<std::uint32_t>(sample.size), 4);
  file += Padded("", 4) + SampleBytes(sample.size, sample.seed);
  PutCheck(file, kCheckAt);
  return file;
}

std::string FontsFileName(const OsVersion& fonts) {
  return "AurexFontv" + Digits(VersionNumber(fonts), 3) + Digits(fonts.build, 1) + ".kft";
}

}  // namespace sim
