#pragma once

#include <QFontMetrics>

#include "dataview/DataTypesView.h"
#include "dataview/ui/CellEditDelegate.h"
#include "dataview/ui/GridColours.h"
#include "dataview/ui/RegionFrames.h"

namespace kv::mdlDataTypesView {

// Draws the cells of the operand grid, hundreds at once in on-line mode: straight from the store, in one fixed-width
// face, without the toolkit's item styling.
//
//   background   writable, read-only or no operand
//   bar, left    the value has just changed; it shrinks and pales while the change grows old
//   corner       edited and not written; the text is italic as well
//   frame        the cell is in a region; in the selected one it is thicker
//   faint text   kept from an earlier opening of the view, or read before the controller was out of reach
class OperandDelegate final : public CellEditDelegate {
 public:
  // Both outlive the delegate.
  OperandDelegate(const DataTypesView& view, const RegionFrames& frames);

  // To be called when the palette or the grid's font has changed.
  void Follow(const QPalette& palette, const QFont& font);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  struct Cell {
    OperandTypeCode type;
    std::int32_t address;
    double change;
    bool isEdited;
    bool isOld;
  };

  void PaintBackground(QPainter& painter, const QStyleOptionViewItem& option, const Cell& cell) const;
  void PaintText(QPainter& painter, const QRect& place, const Cell& cell) const;
  void PaintMarks(QPainter& painter, const QRect& place, const Cell& cell) const;
  void PaintFrame(QPainter& painter, const QRect& place, const Cell& cell) const;
  static void PaintCursor(QPainter& painter, const QStyleOptionViewItem& option);

  const DataTypesView& mView;
  const RegionFrames& mFrames;
  GridColours mColours;
  QFont mFont;
  QFont mItalic;
  QFontMetrics mMetrics;
  int mDigitWidth = 1;
};

}  // namespace kv::mdlDataTypesView
