#pragma once

#include "KvTele2/panel/Picture.h"
#include "KvTele2/panel/ScreenItems.h"
#include "KvTele2/panel/ScreenResources.h"

namespace kv::panel {

// The dots that an item of a colour display may set, on a screen of any size; empty for what is not seen.
[[nodiscard]] PixelRect BoundsOf(const SlotItem& item, const ScreenResources& resources);

// Draws it, as far as the pen reaches. A text in a font that is missing is drawn in the built-in one, in a frame of
// dots; an image that is missing is a frame with its name.
void DrawItem(Pen& pen, const SlotItem& item, const ScreenResources& resources);

}  // namespace kv::panel
