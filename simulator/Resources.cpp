#include "simulator/Resources.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "base/Crc32.h"
#include "simulator/LittleEndian.h"
#include "simulator/panel/Fonts.h"
#include "simulator/panel/Images.h"

namespace sim {
namespace {

constexpr std::size_t kNameSize = 32;
constexpr std::size_t kEntrySize = 2 + 4 + 4 + kNameSize;
constexpr std::size_t kLargestDirectory = 8192;
constexpr std::uint32_t kLargestPiece = 4096;

struct Resource {
  std::uint16_t id = 0;
  std::string data;
};

// All resources of one kind, and the entries that tell of them.
struct Collection {
  std::vector<Resource> resources;
  std::string entries;

  void Add(std::uint16_t id, std::string_view name, std::string data) {
    AppendLittle(entries, id, 2);
    AppendLittle(entries, static_cast<std::uint32_t>(data.size()), 4);
    AppendLittle(entries, kv::Crc32(data), 4);
    entries += name;
    entries.append(kNameSize - name.size(), '\0');
    resources.push_back({id, std::move(data)});
  }
  [[nodiscard]] const Resource* Find(std::uint16_t id) const {
    const auto resource = std::ranges::find(resources, id, &Resource::id);
    return resource == resources.end() ? nullptr : &*resource;
  }
};

const Collection& Fonts() {
  static const Collection fonts = [] {
    Collection made;
    for (const PanelFont& font : PanelFonts()) made.Add(font.id, font.name, std::string(font.data));
    return made;
  }();
  return fonts;
}

const Collection& ImagesFor(const Display& display) {
  static std::map<std::pair<int, int>, Collection> collections;
  Collection& images = collections[{display.width, display.height}];
  if (images.resources.empty()) {
    for (PanelImage& image : DrawImages(Layout(display))) images.Add(image.id, image.name, std::move(image.data));
  }
  return images;
}

Result<const Collection*> CollectionOf(std::uint16_t kind, const Display& display) {
  if (kind == static_cast<std::uint16_t>(ResourceKind::Fonts)) return &Fonts();
  if (kind == static_cast<std::uint16_t>(ResourceKind::Images)) return &ImagesFor(display);
  return Refuse(Refusal::Malformed);
}

}  // namespace

Result<std::string> Resources::Directory(std::uint16_t kind, std::uint32_t first) const {
  const auto collection = CollectionOf(kind, mDisplay);
  if (!collection) return Refuse(collection.error());
  const std::size_t count = (*collection)->resources.size();
  const std::size_t skipped = std::min<std::size_t>(first, count);
  const std::size_t told = std::min(count - skipped, (kLargestDirectory - 2) / kEntrySize);
  std::string directory;
  AppendLittle(directory, static_cast<std::uint32_t>(count), 2);
  return directory.append((*collection)->entries, skipped * kEntrySize, told * kEntrySize);
}

Result<std::string> Resources::Piece(std::uint16_t kind, std::uint16_t id, std::uint32_t offset,
                                     std::uint32_t length) const {
  const auto collection = CollectionOf(kind, mDisplay);
  if (!collection) return Refuse(collection.error());
  if (length == 0 || length > kLargestPiece) return Refuse(Refusal::PastTheEnd);
  const Resource* resource = (*collection)->Find(id);
  if (resource == nullptr) return Refuse(Refusal::OutsideMemory);
  const std::string& data = resource->data;
  if (offset > data.size() || length > data.size() - offset) return Refuse(Refusal::OutsideMemory);
  return data.substr(offset, length);
}

std::uint32_t Resources::DirectoryCrc(ResourceKind kind) const {
  const auto collection = CollectionOf(static_cast<std::uint16_t>(kind), mDisplay);
  return collection ? kv::Crc32((*collection)->entries) : 0;
}

std::string_view Resources::Image(std::uint16_t id) const {
  const Resource* image = ImagesFor(mDisplay).Find(id);
  return image == nullptr ? std::string_view() : std::string_view(image->data);
}

}  // namespace sim
