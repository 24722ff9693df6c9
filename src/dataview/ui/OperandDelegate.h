#pragma once

#include <QFontMetrics>

#include "dataview/DataTypesView.h"
#include "dataview/ui/CellEditor.h"
#include "dataview/ui/GridColours.h"

namespace kv::mdlDataTypesView {

// Draws the cells of the operand grid, hundreds at once in on-line mode: straight from the store, in one fixed-width
// face, without the toolkit's item styling.
//
//   background   writable, read-only or no operand
//   bar, left    the value has just changed; it shrinks and pales while the change grows old
//   corner       edited and not written; the text is italic as well
//   faint text   kept from an earlier opening of the view, not read since
class OperandDelegate final : public CellEditDelegate {
 public:
  // `view` outlives the delegate.
  explicit OperandDelegate(const DataTypesView& view);

  // To be called when the palette or the grid's font has changed.
  void Follow(const QPalette& palette, const QFont& font);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  struct Cell {
    OperandTypeCode type;
    std::int32_t address;
    double change;
    bool isEdited;
    bool isKept;
  };

  void PaintBackground(QPainter& painter, const QStyleOptionViewItem& option, const Cell& cell) const;
  void PaintText(QPainter& painter, const QRect& place, const Cell& cell) const;
  void PaintMarks(QPainter& painter, const QRect& place, const Cell& cell) const;
  static void PaintCursor(QPainter& painter, const QStyleOptionViewItem& option);

  const DataTypesView& mView;
  GridColours mColours;
  QFont mFont;
  QFont mItalic;
  QFontMetrics mMetrics;
  int mDigitWidth = 1;
};

}  // namespace kv::mdlDataTypesView
