#include "download/FontsFile.h"

#include "download/AurexPlaces.h"
#include "download/FileFields.h"
#include "download/OsFileName.h"
#include "download/ReadDownload.h"

namespace kv {
namespace {

constexpr std::string_view kMagic = "KF";
constexpr std::size_t kHead = 16;
constexpr std::size_t kCheckAt = 12;
constexpr std::uint32_t kNumbers = 10'000;                  // three digits version, one build
constexpr std::size_t kLargestFile = std::size_t{1} << 20;  // twice the fonts memory of any controller

}  // namespace

std::string FontsText(const FontsFile& fonts) {
  return VersionText(fonts.number) + " (B" + std::to_string(fonts.number.build) + ")";
}

std::expected<FontsFile, DownloadFileError> ParseFontsFile(std::string_view bytes, const std::string& file) {
  const FaultsOf faults(file);
  if (bytes.size() < kHead) return faults.NotLegal("expected a header of 16 bytes");
  if (!bytes.starts_with(kMagic)) return faults.NotLegal("expected a fonts file, which begins with \"KF\"");
  FontsFile fonts;
  fonts.model = TextAt(bytes, 2, 4);
  const AurexPlaces* places = PlacesOf(fonts.model);
  if (places == nullptr) return faults.NotLegal("expected the O/S model K220, K222 or K330 at byte 2");
  const std::uint32_t number = LittleAt(bytes, 6, 2);
  if (number >= kNumbers) return faults.NotLegal("expected four digits of version and build at byte 6");
  fonts.number = {static_cast<int>(number / 10), static_cast<int>(number % 10)};

  const std::string_view data = bytes.substr(kHead);
  const std::uint32_t length = LittleAt(bytes, 8, 4);
  if (length != data.size()) {
    return faults.Damaged("byte 8", WrongLengthText(std::uint64_t{length} + kHead, bytes.size()));
  }
  if (!HasItsCheck(bytes, kCheckAt)) return faults.Damaged("byte 12", "its CRC-32 does not fit: it was damaged");
  const std::uint32_t room = places->fontsEnd - places->fontsStart;
  if (length == 0 || length > room) {
    return faults.Damaged("byte 8", "expected 1 to " + std::to_string(room) + " bytes of fonts");
  }
  fonts.data.assign(data.begin(), data.end());
  fonts.stamp = StampOf(bytes);
  return fonts;
}

std::expected<FontsFile, DownloadFileError> ReadFontsFile(const std::filesystem::path& file) {
  const auto bytes = ReadDownloadBytes(file, kLargestFile);
  if (!bytes) return std::unexpected(bytes.error());
  auto fonts = ParseFontsFile(*bytes, Utf8FromPath(file));
  if (!fonts || FontsNumberIn(GetFileName(file)) == fonts->number) return fonts;
  return FaultsOf(Utf8FromPath(file))
      .Damaged("its name", "expected one that ends like \"" + FontsName(fonts->number) + "\", as what is in it");
}

}  // namespace kv
