#include "desktop/ui/CardLayout.h"

#include <QWidget>
#include <algorithm>
#include <utility>

namespace kv {
namespace {

constexpr int kUsualColumns = 3;

int HeightOf(const QLayoutItem& item, int width) {
  return item.hasHeightForWidth() ? item.heightForWidth(width) : item.sizeHint().height();
}

}  // namespace

CardLayout::CardLayout(QWidget* parent, int width) : QLayout(parent), mWidth(width) {}

CardLayout::~CardLayout() {
  qDeleteAll(mItems);
}

void CardLayout::Clear() {
  for (QLayoutItem* item : std::exchange(mItems, {})) {
    item->widget()->hide();
    item->widget()->deleteLater();  // what is clicked outlives its click
    delete item;
  }
  invalidate();
}

QLayoutItem* CardLayout::takeAt(int index) {
  return index >= 0 && index < mItems.size() ? mItems.takeAt(index) : nullptr;
}

int CardLayout::heightForWidth(int width) const {
  return Place({0, 0, width, 0}, false);
}

QSize CardLayout::minimumSize() const {
  const QMargins margins = contentsMargins();
  return {mWidth + margins.left() + margins.right(), 0};
}

QSize CardLayout::sizeHint() const {
  const QMargins margins = contentsMargins();
  const int width = kUsualColumns * (mWidth + spacing()) - spacing() + margins.left() + margins.right();
  return {width, heightForWidth(width)};
}

void CardLayout::setGeometry(const QRect& place) {
  QLayout::setGeometry(place);
  Place(place, true);
}

int CardLayout::Place(const QRect& place, bool arrange) const {
  const QRect room = place.marginsRemoved(contentsMargins());
  const int gap = std::max(spacing(), 0);
  const int columns = std::max(1, (room.width() + gap) / (mWidth + gap));
  const int width = std::min((room.width() - (columns - 1) * gap) / columns, 2 * mWidth);
  int top = room.top();
  for (qsizetype first = 0; first < mItems.size(); first += columns) {
    const QList<QLayoutItem*> row = mItems.mid(first, columns);
    int height = 0;
    for (const QLayoutItem* item : row) height = std::max(height, HeightOf(*item, width));
    for (qsizetype i = 0; arrange && i < row.size(); ++i) {
      row[i]->setGeometry({room.left() + static_cast<int>(i) * (width + gap), top, width, height});
    }
    top += height + gap;
  }
  return top - gap - room.top() + contentsMargins().top() + contentsMargins().bottom();
}

}  // namespace kv
