#pragma once

#include <optional>
#include <string>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/panel/Picture.h"

namespace kv {

// What a font or image is called: UTF-8, "Image 7" where it has no other name.
[[nodiscard]] std::string NameOfResource(PanelResourceKind kind, const PanelResource& entry);

// What a font or image looks like, for people who look into a cache: an image itself on a grey ground, a font as a line
// of samples in the colour `ink` on a transparent ground. Nothing where the bytes are neither.
[[nodiscard]] std::optional<panel::Picture> PictureOfResource(PanelResourceKind kind,
                                                              const cache::CachedResource& resource, panel::Dot ink);

}  // namespace kv
