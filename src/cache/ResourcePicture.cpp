#include "cache/ResourcePicture.h"

#include <algorithm>
#include <string_view>

#include "KvTele2/panel/ScreenFont.h"
#include "KvTele2/panel/ScreenText.h"

namespace kv {
namespace {

constexpr std::string_view kSample = "AaBbGg 0123456789 +\xB0\xB5\xC4\xD6\xDC\xE9";  // Windows-1252
constexpr int kWidest = 320;
constexpr panel::Dot kGround = 0xFF6B7680;  // on which light and dark images are seen

// As many characters as fit, none of them cut.
panel::Picture SampleOf(const panel::ScreenFont& font, panel::Dot ink) {
  std::string_view sample = kSample;
  while (sample.size() > 1 && font.WidthOf(sample) > kWidest) sample.remove_suffix(1);
  panel::Picture picture(std::clamp(font.WidthOf(sample), 1, kWidest), font.Height(), panel::kTransparent);
  panel::Pen pen(picture, picture.Bounds());
  int x = 0;
  for (const char character : sample) {
    if (const auto glyph = font.GlyphOf(character)) pen.Bits(x, 0, glyph->width, glyph->rows, ink);
    x += font.WidthOf(character);
  }
  return picture;
}

}  // namespace

std::string NameOfResource(PanelResourceKind kind, const PanelResource& entry) {
  const std::string name = panel::ReadableText(entry.name);
  if (!name.empty()) return name;
  return (kind == PanelResourceKind::Font ? "Font " : "Image ") + std::to_string(entry.id);
}

std::optional<panel::Picture> PictureOfResource(PanelResourceKind kind, const cache::CachedResource& resource,
                                                panel::Dot ink) {
  if (kind == PanelResourceKind::Image) {
    const auto image = panel::ParseScreenImage(resource.bytes);
    if (!image) return std::nullopt;
    panel::Picture shown(image->Width(), image->Height(), kGround);
    panel::Pen(shown, shown.Bounds()).Stamp(0, 0, *image);
    return shown;
  }
  const auto font = panel::ScreenFont::Parse(resource.bytes);
  return font ? std::optional(SampleOf(*font, ink)) : std::nullopt;
}

}  // namespace kv
