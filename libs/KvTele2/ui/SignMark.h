#pragma once

#include <QWidget>

#include "KvTele2/Sign.h"

namespace kv {

// A sign's shape in its colour, as high as a line of text or as `size` asks; its word stands beside it in a label. In
// colours that are told from the background on light and dark.
class SignMark final : public QWidget {
 public:
  explicit SignMark(QWidget* parent, double lines = 1);

  void Show(const Sign& sign);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void TakeSize();

  double mLines;
  Sign mSign;
};

}  // namespace kv
