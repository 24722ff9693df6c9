#include "desktop/ui/ElidedLabel.h"

#include <QFontMetrics>
#include <QPainter>

namespace kv {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::SetFullText(const QString& text) {
  if (text == this->text()) return;
  setText(text);
  setToolTip(text);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QRect place = contentsRect();
  const QString line = text().section('\n', 0, 0).remove('\r');
  painter.setPen(palette().color(foregroundRole()));
  painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                   fontMetrics().elidedText(line, Qt::ElideRight, place.width()));
}

// One line high, whatever the text.
QSize ElidedLabel::sizeHint() const {
  return {QLabel::sizeHint().width(), fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
  return {0, fontMetrics().height()};
}

}  // namespace kv
