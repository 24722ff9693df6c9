#pragma once

#include <QRectF>
#include <QSize>
#include <QString>
#include <array>

namespace kv {

// How large a controller's screen is shown: a whole multiple of its dots, or as large as there is room.
//
// A multiple counts device dots for each 100 % that the desktop's scale is rounded to: 1:1 is one dot at 100 %, two at
// 200 %. So every dot of the controller is a square of whole dots of the screen, whatever the scale.
class PanelScale {
 public:
  static constexpr int kLargest = 4;

  PanelScale() = default;  // fits
  explicit PanelScale(int multiple) : mMultiple(multiple) {}

  // "Fit", "2:1": in menus and in the file; any other name fits.
  [[nodiscard]] static PanelScale Named(const QString& name);
  [[nodiscard]] QString Name() const;
  [[nodiscard]] bool Fits() const { return mMultiple == 0; }

  // Dots of the screen for each of the controller's. `room` is in logical units of `ratio` device dots.
  [[nodiscard]] double Factor(QSize dots, QSizeF room, double ratio) const;
  // The room that it asks for, in logical units; empty: it takes what there is.
  [[nodiscard]] QSize Asked(QSize dots, double ratio) const;

 private:
  int mMultiple = 0;
};

// Where a picture of so many dots stands in a room: in its middle, at a whole device dot. In logical units.
[[nodiscard]] QRectF PlaceOfPicture(QSize dots, QSizeF room, double factor, double ratio);

}  // namespace kv
