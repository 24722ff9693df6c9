#include "KvTele2/ui/SignMark.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>

namespace kv {
namespace {

QColor ColourOf(SignColour colour, const QPalette& palette) {
  constexpr int kHalf = 128;  // lightness, of 255
  const bool isDark = palette.color(QPalette::Window).lightness() < kHalf;
  switch (colour) {
    case SignColour::Green:
      return isDark ? QColor(0x5f, 0xcb, 0x74) : QColor(0x1b, 0x7d, 0x35);
    case SignColour::Amber:
      return isDark ? QColor(0xf2, 0xb3, 0x3d) : QColor(0xa8, 0x61, 0x00);
    case SignColour::Blue:
      return isDark ? QColor(0x6c, 0xb2, 0xff) : QColor(0x1a, 0x62, 0xc7);
    case SignColour::Red:
      return isDark ? QColor(0xff, 0x7b, 0x72) : QColor(0xc2, 0x22, 0x1c);
    case SignColour::Grey:
      break;
  }
  return isDark ? QColor(0xa0, 0xa4, 0xab) : QColor(0x6a, 0x6f, 0x78);
}

// In a square from -1 to 1.
QPainterPath PathOf(SignShape shape) {
  QPainterPath path;
  switch (shape) {
    case SignShape::Triangle:
      path.addPolygon(QPolygonF({{-0.7, -0.9}, {0.9, 0}, {-0.7, 0.9}, {-0.7, -0.9}}));
      break;
    case SignShape::Square:
      path.addRect(-0.75, -0.75, 1.5, 1.5);
      break;
    case SignShape::Arrow:
      path.addPolygon(
          QPolygonF({{-0.3, -0.9}, {0.3, -0.9}, {0.3, 0}, {0.85, 0}, {0, 0.9}, {-0.85, 0}, {-0.3, 0}, {-0.3, -0.9}}));
      break;
    case SignShape::Diamond:
      path.addPolygon(QPolygonF({{0, -0.95}, {0.95, 0}, {0, 0.95}, {-0.95, 0}, {0, -0.95}}));
      break;
    case SignShape::Half:
      path.moveTo(0, 0);
      path.arcTo(QRectF(-0.85, -0.85, 1.7, 1.7), 90, 180);
      path.closeSubpath();
      break;
    default:
      path.addEllipse(QPointF(0, 0), 0.85, 0.85);
  }
  return path;
}

}  // namespace

SignMark::SignMark(QWidget* parent, double lines) : QWidget(parent), mLines(lines) {
  TakeSize();
}

void SignMark::TakeSize() {
  const int side = static_cast<int>(mLines * fontMetrics().height());
  setFixedSize(side, side);
}

void SignMark::Show(const Sign& sign) {
  if (sign == mSign) return;
  mSign = sign;
  update();
}

void SignMark::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(width() / 2.0, height() / 2.0);
  painter.scale(width() / 2.4, height() / 2.4);
  const QColor colour = ColourOf(mSign.colour, palette());
  constexpr double kStroke = 0.28;
  painter.setPen(QPen(colour, kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  if (mSign.shape == SignShape::Cross) {
    painter.drawLine(QPointF(-0.7, -0.7), QPointF(0.7, 0.7));
    painter.drawLine(QPointF(-0.7, 0.7), QPointF(0.7, -0.7));
    return;
  }
  if (mSign.shape == SignShape::Half) painter.drawPath(PathOf(SignShape::Ring));
  if (mSign.shape != SignShape::Ring) painter.setBrush(colour);
  painter.drawPath(PathOf(mSign.shape));
}

void SignMark::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange) TakeSize();
}

}  // namespace kv
