#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "KvTele2/panel/Picture.h"
#include "KvTele2/panel/ScreenModel.h"
#include "KvTele2/panel/ScreenResources.h"

namespace kv::panel {

// A controller's screen as a picture: of a colour display dot for dot what the controller shows, of a text display its
// cells of 8 x 16 dots. Only what has changed is drawn anew.
//
// Its owner tells what has changed (Note...), then lets it draw (Draw) and takes the rectangles that differ. Model and
// resources outlive it.
class Drawing {
 public:
  Drawing(const ScreenModel& model, const ScreenResources& resources);

  void Note(const ScreenDelta& delta);
  void NoteAll();
  // Blinking cells are seen (true, the start) or not. They are drawn anew with a change.
  void ShowBlinking(bool isSeen);
  // Something on the screen blinks, so that somebody has to call ShowBlinking twice a second.
  [[nodiscard]] bool HasBlinking() const;

  // Draws what has been noted since; nothing where that is nothing. What it gives covers all dots that may differ
  // from before, without overlaps being avoided.
  [[nodiscard]] std::vector<PixelRect> Draw();
  [[nodiscard]] const Picture& Dots() const { return mPicture; }

  // Fonts and images that the screen needs and the resources lack, each once.
  struct Missing {
    PanelResourceKind kind;
    std::uint16_t id;
    bool operator==(const Missing&) const = default;
  };
  [[nodiscard]] std::vector<Missing> MissingResources() const;

 private:
  void NoteSlot(std::uint16_t slot);
  void NoteRow(int row);
  void NoteArea(PixelRect area);
  void DrawColour(Pen& pen);
  void DrawText(Pen& pen);
  void DrawRow(Pen& pen, int row);
  void DrawCursor(Pen& pen);
  [[nodiscard]] bool Blinks(int row) const;

  const ScreenModel& mModel;
  const ScreenResources& mResources;
  Picture mPicture;
  std::vector<PixelRect> mBounds;  // of each slot of a colour display, as far as they are noted
  bool mAreBoundsOld = true;       // all of them
  std::vector<PixelRect> mDirty;
  int mCursorRow = -1;  // where the cursor was drawn last
  unsigned mGeneration;
  bool mIsBlinkSeen = true;
};

}  // namespace kv::panel
