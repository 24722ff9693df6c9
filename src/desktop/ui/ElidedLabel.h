#pragma once

#include <QLabel>

namespace kv {

// A label that gives way: what does not fit into it ends with "..." and is read in full in its tooltip. Of a text with
// several lines the first one is shown.
class ElidedLabel final : public QLabel {
 public:
  explicit ElidedLabel(QWidget* parent);

  void SetFullText(const QString& text);

 protected:
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
};

}  // namespace kv
