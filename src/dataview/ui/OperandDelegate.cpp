#include "dataview/ui/OperandDelegate.h"

#include <QPainter>
#include <algorithm>

#include "dataview/ui/OperandModel.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kMargin = 4;  // between a text and the edge of its cell
constexpr int kBar = 3;     // width of the bar of a change
constexpr int kCorner = 7;  // side of the corner of an edit
constexpr int kFrame = 1;   // width of a region's frame
constexpr int kSelectedFrame = 2;
constexpr double kSelected = 0.40;    // how much of the selection's colour lies over a cell
constexpr double kJustNow = 0.45;     // the same of a change that has just been
constexpr double kShortestBar = 0.3;  // of the cell's height, as long as there is a bar

CellEditDelegate::Fault FaultOf(const DataTypesView& view) {
  return [&view](const QModelIndex& index, const QString& text) {
    const OperandTypeCode type = OperandModel::TypeAt(index.row());
    return QString::fromStdString(view.EditFault(type, index.column(), text.toStdString()));
  };
}

}  // namespace

OperandDelegate::OperandDelegate(const DataTypesView& view, const RegionFrames& frames)
    : CellEditDelegate(FaultOf(view)), mView(view), mFrames(frames), mMetrics(mFont) {}

void OperandDelegate::Follow(const QPalette& palette, const QFont& font) {
  mColours = ColoursFor(palette);
  mFont = font;
  mItalic = font;
  mItalic.setItalic(true);
  mMetrics = QFontMetrics(mFont);
  mDigitWidth = std::max(1, mMetrics.horizontalAdvance('0'));
}

void OperandDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
  const OperandTypeCode type = OperandModel::TypeAt(index.row());
  const OperandStore& operands = mView.Operands();
  if (!operands.IsCell(type, index.column())) {
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->fillRect(option.rect,
                      isSelected ? Blend(mColours.unusable, mColours.selection, kSelected / 2) : mColours.unusable);
    PaintCursor(*painter, option);
    return;
  }
  const Cell cell{.type = type,
                  .address = index.column(),
                  .change = mView.ChangeMark(type, index.column()),
                  .isEdited = operands.Origin(type, index.column()) == CellOrigin::Edited,
                  .isOld = operands.IsOld(type, index.column())};
  PaintBackground(*painter, option, cell);
  PaintFrame(*painter, option.rect, cell);
  PaintMarks(*painter, option.rect, cell);
  PaintText(*painter, option.rect, cell);
  PaintCursor(*painter, option);
}

void OperandDelegate::PaintBackground(QPainter& painter, const QStyleOptionViewItem& option, const Cell& cell) const {
  QColor colour = mColours.OfType(cell.type);
  if (cell.change > 0) colour = Blend(colour, mColours.change, kJustNow * cell.change);
  if (option.state.testFlag(QStyle::State_Selected)) colour = Blend(colour, mColours.selection, kSelected);
  painter.fillRect(option.rect, colour);
}

void OperandDelegate::PaintMarks(QPainter& painter, const QRect& place, const Cell& cell) const {
  if (cell.change > 0) {
    const double share = kShortestBar + (1 - kShortestBar) * cell.change;
    const int height = std::max(1, static_cast<int>(place.height() * share));
    painter.fillRect(place.left(), place.bottom() + 1 - height, kBar, height, mColours.change);
  }
  if (cell.isEdited) {
    const QPoint corner[] = {place.topRight() + QPoint(1 - kCorner, 0), place.topRight() + QPoint(1, 0),
                             place.topRight() + QPoint(1, kCorner)};
    painter.setPen(Qt::NoPen);
    painter.setBrush(mColours.edited);
    painter.drawPolygon(corner, 3);
  }
}

void OperandDelegate::PaintFrame(QPainter& painter, const QRect& place, const Cell& cell) const {
  const RegionFrames::Cell frame = mFrames.At(cell.type, cell.address);
  if (!frame.isInRegion) return;
  const int width = frame.isSelected ? kSelectedFrame : kFrame;
  const QColor& colour = frame.isSelected ? mColours.selection : mColours.region;
  painter.fillRect(place.left(), place.top(), place.width(), width, colour);
  painter.fillRect(place.left(), place.bottom() + 1 - width, place.width(), width, colour);
  if (frame.isFirst) painter.fillRect(place.left(), place.top(), width, place.height(), colour);
  if (frame.isLast) painter.fillRect(place.right() + 1 - width, place.top(), width, place.height(), colour);
}

void OperandDelegate::PaintText(QPainter& painter, const QRect& place, const Cell& cell) const {
  const std::string& text = mView.Operands().Text(cell.type, cell.address);
  if (text.empty()) return;
  const int room = place.width() - 2 * kMargin;
  const QString shown = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  painter.setFont(cell.isEdited ? mItalic : mFont);
  painter.setPen(cell.isOld ? mColours.faint : mColours.text);
  const int width = static_cast<int>(shown.size()) * mDigitWidth;
  const int baseline = place.top() + (place.height() + mMetrics.ascent() - mMetrics.descent()) / 2;
  if (width <= room) {
    painter.drawText(QPoint(place.right() - kMargin - width + 1, baseline), shown);
  } else {
    painter.drawText(QPoint(place.left() + kMargin, baseline), mMetrics.elidedText(shown, Qt::ElideRight, room));
  }
}

void OperandDelegate::PaintCursor(QPainter& painter, const QStyleOptionViewItem& option) {
  if (!option.state.testFlag(QStyle::State_HasFocus)) return;
  painter.setPen(QPen(option.palette.color(QPalette::Text), 2));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(option.rect.adjusted(1, 1, -1, -1));
}

}  // namespace kv::mdlDataTypesView
