#pragma once

#include <QLayout>
#include <QList>

namespace kv {

// Cards of one width beside and below each other: as many in a row as there is room for, each row as high as its
// highest card. The cards become wider than they must be before there is room for one more, but not as wide as two.
class CardLayout final : public QLayout {
 public:
  // `width`: of a card at least.
  CardLayout(QWidget* parent, int width);
  ~CardLayout() override;

  // Takes all cards away and deletes them.
  void Clear();

  void addItem(QLayoutItem* item) override { mItems.append(item); }
  [[nodiscard]] int count() const override { return static_cast<int>(mItems.size()); }
  [[nodiscard]] QLayoutItem* itemAt(int index) const override { return mItems.value(index); }
  QLayoutItem* takeAt(int index) override;
  [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize minimumSize() const override;
  [[nodiscard]] QSize sizeHint() const override;
  void setGeometry(const QRect& place) override;

 private:
  // The height that is needed for this width; with `arrange` the cards are put there.
  int Place(const QRect& place, bool arrange) const;

  QList<QLayoutItem*> mItems;
  int mWidth;
};

}  // namespace kv
