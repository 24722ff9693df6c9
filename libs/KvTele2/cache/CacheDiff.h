#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "KvTele2/cache/CacheFile.h"
#include "link/PanelLink.h"

namespace kv::cache {

// How a font or image differs between two sides.
enum class CacheDifferenceKind {
  OnlyInFirst,
  OnlyInSecond,
  OtherBytes,
  OtherName,  // the bytes are the same
};

struct CacheDifference {
  PanelResourceKind kind = PanelResourceKind::Font;
  std::uint16_t id = 0;
  std::string name{};  // UTF-8; that of the first side where it is on both
  CacheDifferenceKind how = CacheDifferenceKind::OtherBytes;

  bool operator==(const CacheDifference&) const = default;
};

// By their lengths and CRC-32, those of the first side in its order, then what only the second one has.
[[nodiscard]] std::vector<CacheDifference> Differences(PanelResourceKind kind, std::span<const PanelResource> first,
                                                       std::span<const PanelResource> second);

// The entries of a cache's part; none where that was never imported.
[[nodiscard]] std::vector<PanelResource> EntriesOf(const CacheContent& content, PanelResourceKind kind);

// "Image 7 (pump)", for people, UTF-8.
[[nodiscard]] std::string ResourceName(PanelResourceKind kind, const PanelResource& entry);

}  // namespace kv::cache
