#pragma once

#include <functional>

#include "KvTele2/panel/PanelSession.h"

namespace kv {

// What of the panel is pressed at this moment, by mouse, finger or key: one thing at a time. Whoever sees a press
// begins it here, and ends it when it is let go, slides off, loses the focus or is hidden; ending what is not pressed
// any more is nothing. A press that has ended never begins again by itself.
class PanelPress {
 public:
  using OnChange = std::function<void()>;

  // `begin` hears of a press once; `changed` of each begin and end, so that it goes out without delay.
  PanelPress(std::function<void(const panel::PanelPlace&)> begin, OnChange changed)
      : mOnBegin(std::move(begin)), mOnChange(std::move(changed)) {}

  void Begin(const panel::PanelPlace& place) {
    mPlace = place;
    mOnBegin(place);
    mOnChange();
  }
  void MoveTo(const panel::PanelPlace& place) {
    if (mPlace) mPlace = place;
  }
  void End() {
    if (!mPlace) return;
    mPlace.reset();
    mOnChange();
  }
  // Pressed and let go at once, as by a screen reader.
  void Tap(const panel::PanelPlace& place) {
    Begin(place);
    End();
  }

  [[nodiscard]] const std::optional<panel::PanelPlace>& Now() const { return mPlace; }

 private:
  std::function<void(const panel::PanelPlace&)> mOnBegin;
  OnChange mOnChange;
  std::optional<panel::PanelPlace> mPlace;
};

}  // namespace kv
