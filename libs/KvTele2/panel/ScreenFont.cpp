#include "KvTele2/panel/ScreenFont.h"

#include <algorithm>

#include "base/LittleEndian.h"

namespace kv::panel {
namespace {

constexpr std::size_t kHead = 10;
constexpr std::uint8_t kVersion = 2;
constexpr int kLeastHeight = 6;
constexpr int kMostHeight = 64;
constexpr std::uint8_t kMostWidth = 64;

std::uint8_t ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint8_t>(bytes[at]);
}

}  // namespace

std::expected<ScreenFont, std::string> ScreenFont::Parse(std::string_view bytes) {
  if (bytes.size() < kHead || !bytes.starts_with("KFNT")) return std::unexpected("it is not a font of a screen");
  if (ByteAt(bytes, 4) != kVersion) {
    return std::unexpected("it is a font of version " + std::to_string(ByteAt(bytes, 4)) +
                           ", and this program knows version 2");
  }
  ScreenFont font;
  font.mHeight = ByteAt(bytes, 5);
  font.mBase = ByteAt(bytes, 6);
  const std::size_t first = ByteAt(bytes, 7);
  const std::size_t count = LittleEndianAt<std::uint16_t>(bytes, 8);
  if (font.mHeight < kLeastHeight || font.mHeight > kMostHeight || font.mBase > font.mHeight) {
    return std::unexpected("its height or its base line is outside of what a font has");
  }
  if (count < 1 || count > font.mWidths.size() - first) return std::unexpected("it has too many characters, or none");
  if (bytes.size() < kHead + count) return std::unexpected("it ends within its table of widths");

  std::size_t start = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t width = ByteAt(bytes, kHead + i);
    if (width > kMostWidth) return std::unexpected("one of its characters is wider than 64 dots");
    font.mWidths[first + i] = width;
    font.mStarts[first + i] = static_cast<std::uint32_t>(start);
    start += (width + 7U) / 8U * static_cast<std::size_t>(font.mHeight);
  }
  const std::string_view rows = bytes.substr(kHead + count);
  if (rows.size() != start) return std::unexpected("its characters take more or fewer bytes than it has");
  font.mRows.assign(rows.begin(), rows.end());
  return font;
}

std::optional<Glyph> ScreenFont::GlyphOf(char character) const {
  const auto index = static_cast<std::uint8_t>(character);
  const int width = mWidths[index];
  if (width == 0) return std::nullopt;
  const auto length = static_cast<std::size_t>((width + 7) / 8 * mHeight);
  return Glyph{width, std::span(mRows).subspan(mStarts[index], length)};
}

int ScreenFont::WidthOf(char character) const {
  const int width = mWidths[static_cast<std::uint8_t>(character)];
  return width > 0 ? width : mHeight / 2;
}

int ScreenFont::WidthOf(std::string_view text) const {
  int width = 0;
  for (const char character : text) width += WidthOf(character);
  return width;
}

std::expected<Picture, std::string> ParseScreenImage(std::string_view bytes) {
  constexpr std::size_t kFileHead = 14;
  constexpr std::size_t kLeastInfo = 40;
  constexpr std::int32_t kMostSide = 4096;
  constexpr std::int64_t kMostDots = 4'194'304;
  constexpr Dot kKey = kOpaque | 0xFF00FF;
  if (bytes.size() < kFileHead + kLeastInfo || !bytes.starts_with("BM")) return std::unexpected("it is not a bitmap");
  const std::size_t start = LittleEndianAt<std::uint32_t>(bytes, 10);
  const auto width = static_cast<std::int32_t>(LittleEndianAt<std::uint32_t>(bytes, 18));
  const auto signedHeight = static_cast<std::int32_t>(LittleEndianAt<std::uint32_t>(bytes, 22));
  const bool isFromTop = signedHeight < 0;
  if (LittleEndianAt<std::uint32_t>(bytes, 14) < kLeastInfo || LittleEndianAt<std::uint16_t>(bytes, 28) != 24 ||
      LittleEndianAt<std::uint32_t>(bytes, 30) != 0) {
    return std::unexpected("it is not a bitmap of 24 bits without compression");
  }
  if (width < 1 || width > kMostSide || signedHeight == 0 || signedHeight > kMostSide || signedHeight < -kMostSide) {
    return std::unexpected("its width or height is outside of what an image has");
  }
  const std::int32_t height = isFromTop ? -signedHeight : signedHeight;
  const std::size_t rowBytes = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
  const std::size_t needed = rowBytes * static_cast<std::size_t>(height);
  if (std::int64_t{width} * height > kMostDots) return std::unexpected("it is too large for a screen");
  if (start < kFileHead + kLeastInfo || start > bytes.size() || bytes.size() - start < needed) {
    return std::unexpected("it has fewer bytes than its size needs");
  }
  Picture picture(width, height, kOpaque);
  for (std::int32_t y = 0; y < height; ++y) {
    const std::int32_t row = isFromTop ? y : height - 1 - y;
    const std::string_view line = bytes.substr(start + rowBytes * static_cast<std::size_t>(row), rowBytes);
    const std::span<Dot> dots = picture.Row(y);
    for (std::size_t x = 0; x < dots.size(); ++x) {
      const Dot dot = kOpaque | LittleEndian(line.substr(3 * x, 3));
      dots[x] = dot == kKey ? kTransparent : dot;
    }
  }
  return picture;
}

}  // namespace kv::panel
