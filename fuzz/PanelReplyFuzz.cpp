#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "KvCmDrv1/wire/PanelCodec.h"
#include "KvTele2/panel/Drawing.h"
#include "KvTele2/panel/ScreenText.h"
#include "base/LittleEndian.h"
#include "fuzz/Require.h"

// A panel's description and its replies, one behind the other, each with its length in front: whatever comes, the
// screen is drawn as a fresh drawing of the same state would be.
namespace {

std::string_view TakePart(std::string_view& rest) {
  if (rest.size() < 2) return {};
  const std::size_t length = kv::LittleEndian(rest.substr(0, 2));
  const std::string_view part = rest.substr(2, length);
  rest.remove_prefix(std::min(rest.size(), 2 + length));
  return part;
}

kv::PanelDescription PanelOf(std::string_view part) {
  if (const auto panel = kv::ReadPanelDescription(part)) {
    Require(panel->width >= 1 && panel->height >= 1 && panel->keys.size() <= 40, "a description is within its bounds");
    // A picture of the whole size in each run would leave no time for anything else.
    if (panel->kind == kv::PanelKind::Text || panel->width <= 64) return *panel;
  }
  return {.kind = kv::PanelKind::Colour, .width = 48, .height = 32};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const kv::panel::ScreenResources resources;
  kv::panel::ScreenModel model(PanelOf(TakePart(rest)));
  kv::panel::Drawing drawing(model, resources);
  for (int replies = 0; rest.size() > 2 && replies < 8; ++replies) {
    const std::string_view part = TakePart(rest);
    (void)kv::ReadPanelDirectory(part);
    (void)kv::ReadPanelText(part, "PE", 1);
    (void)kv::PanelEventMeaning(part);
    const auto changes = kv::ReadPanelChanges(part);
    if (!changes) continue;
    const kv::PanelRevision before = model.Revision();
    const auto delta = model.Take(*changes);
    Require(delta || model.Revision() == before, "a screen that is refused changes nothing");
    if (delta) drawing.Note(*delta);
    (void)drawing.Draw();
    (void)kv::panel::PlainText(model, resources);
  }
  kv::panel::Drawing fresh(model, resources);
  (void)fresh.Draw();
  (void)drawing.Draw();
  Require(drawing.Dots() == fresh.Dots(), "what is drawn in pieces is what is drawn at once");
  return 0;
}
