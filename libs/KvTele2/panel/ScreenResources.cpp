#include "KvTele2/panel/ScreenResources.h"

#include <utility>

namespace kv::panel {

std::expected<void, std::string> ScreenResources::Add(PanelResourceKind kind, std::uint16_t id,
                                                      std::string_view bytes) {
  ++mGeneration;
  if (kind == PanelResourceKind::Font) {
    mFonts.erase(id);
    auto font = ScreenFont::Parse(bytes);
    if (!font) return std::unexpected(std::move(font.error()));
    mFonts.emplace(id, *std::move(font));
    return {};
  }
  mImages.erase(id);
  auto image = ParseScreenImage(bytes);
  if (!image) return std::unexpected(std::move(image.error()));
  mImages.emplace(id, *std::move(image));
  return {};
}

void ScreenResources::Name(PanelResourceKind kind, std::uint16_t id, std::string name) {
  ++mGeneration;
  mNames.insert_or_assign({kind, id}, std::move(name));
}

void ScreenResources::Clear() {
  ++mGeneration;
  mFonts.clear();
  mImages.clear();
  mNames.clear();
}

const ScreenFont* ScreenResources::FontOf(std::uint16_t id) const {
  const auto found = mFonts.find(id);
  return found == mFonts.end() ? nullptr : &found->second;
}

const Picture* ScreenResources::ImageOf(std::uint16_t id) const {
  const auto found = mImages.find(id);
  return found == mImages.end() ? nullptr : &found->second;
}

std::string ScreenResources::NameOf(PanelResourceKind kind, std::uint16_t id) const {
  const auto found = mNames.find({kind, id});
  if (found != mNames.end() && !found->second.empty()) return found->second;
  return (kind == PanelResourceKind::Font ? "Font " : "Image ") + std::to_string(id);
}

}  // namespace kv::panel
