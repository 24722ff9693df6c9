#include "KvTele2/cache/CacheDiff.h"

#include <map>

#include "base/AnsiText.h"

namespace kv::cache {

std::vector<CacheDifference> Differences(PanelResourceKind kind, std::span<const PanelResource> first,
                                         std::span<const PanelResource> second) {
  std::vector<CacheDifference> differences;
  const auto add = [&](const PanelResource& one, CacheDifferenceKind how) {
    differences.push_back({.kind = kind, .id = one.id, .name = AnsiToUtf8(one.name), .how = how});
  };
  std::map<std::uint16_t, const PanelResource*> others;
  for (const PanelResource& one : second) others[one.id] = &one;
  for (const PanelResource& one : first) {
    const auto other = others.extract(one.id);
    if (other.empty()) {
      add(one, CacheDifferenceKind::OnlyInFirst);
    } else if (!HasBytesOf(one, *other.mapped())) {
      add(one, CacheDifferenceKind::OtherBytes);
    } else if (one.name != other.mapped()->name) {
      add(one, CacheDifferenceKind::OtherName);
    }
  }
  for (const auto& [id, other] : others) add(*other, CacheDifferenceKind::OnlyInSecond);
  return differences;
}

std::vector<PanelResource> EntriesOf(const CacheContent& content, PanelResourceKind kind) {
  std::vector<PanelResource> entries;
  if (!content.Part(kind)) return entries;
  for (const CachedResource& one : *content.Part(kind)) entries.push_back(one.entry);
  return entries;
}

std::string ResourceName(PanelResourceKind kind, const PanelResource& entry) {
  const std::string number = (kind == PanelResourceKind::Font ? "Font " : "Image ") + std::to_string(entry.id);
  return entry.name.empty() ? number : number + " (" + AnsiToUtf8(entry.name) + ")";
}

}  // namespace kv::cache
