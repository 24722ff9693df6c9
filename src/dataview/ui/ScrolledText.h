#pragma once

#include <QScrollArea>

class QLabel;

namespace kv::mdlDataTypesView {

// A text that takes the lines that it needs, or is folded to its first one, so that it leaves a small window its room.
class ScrolledText final : public QScrollArea {
 public:
  explicit ScrolledText(QLabel* label, QWidget* parent);

  // True when it is another text than before: it is unfolded, to be read.
  bool SetText(const QString& text);
  void Fold(bool isFolded);

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 private:
  QLabel* mLabel;
  bool mIsFolded = false;
};

}  // namespace kv::mdlDataTypesView
