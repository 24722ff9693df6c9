#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <string>
#include <string_view>

#include "KvTele2/panel/ScreenFont.h"
#include "link/PanelLink.h"

namespace kv::panel {

// The fonts and images that a screen is drawn with, by their ids. They come from a cache, or from the controller
// itself; what is not here is drawn as a framed place.
class ScreenResources {
 public:
  // Takes the bytes of a resource in, in place of an earlier one of its id. The error is what is wrong with them; then
  // the resource counts as missing.
  [[nodiscard]] std::expected<void, std::string> Add(PanelResourceKind kind, std::uint16_t id, std::string_view bytes);
  // What it is called, UTF-8; also of one that is not here.
  void Name(PanelResourceKind kind, std::uint16_t id, std::string name);
  void Clear();

  // Null: it is missing.
  [[nodiscard]] const ScreenFont* FontOf(std::uint16_t id) const;
  [[nodiscard]] const Picture* ImageOf(std::uint16_t id) const;
  // "Image 7" where it has no other name.
  [[nodiscard]] std::string NameOf(PanelResourceKind kind, std::uint16_t id) const;

  // Grows with each change, for who keeps something that was made from these.
  [[nodiscard]] unsigned Generation() const { return mGeneration; }

 private:
  struct Key {
    PanelResourceKind kind;
    std::uint16_t id;
    auto operator<=>(const Key&) const = default;
  };

  std::map<std::uint16_t, ScreenFont> mFonts;
  std::map<std::uint16_t, Picture> mImages;
  std::map<Key, std::string> mNames;
  unsigned mGeneration = 0;
};

}  // namespace kv::panel
