#pragma once

#include <QScrollArea>

namespace kv {

// A page that asks for as much room as its content and scrolls where the screen has less, so that the buttons beside it
// stay in sight. A dialog grows and shrinks with the content, as far as the screen goes.
class ScrollPage final : public QScrollArea {
 public:
  // Takes the content over.
  ScrollPage(QWidget* content, QWidget* parent);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  [[nodiscard]] int AskedHeight() const;
  void FollowContent();
  [[nodiscard]] bool IsBeingPlaced() const;
};

}  // namespace kv
