#include <QFile>
#include <QImage>
#include <array>

#include "desktop/ui/IconDrawing.h"

namespace kv {
namespace {

constexpr std::array kSizes{KV_ICON_SIZES};  // dots, ascending

QString FileOf(const QString& name, int size) {
  return QString(":/kv/icons/%1-%2.png").arg(name).arg(size);
}

// The picture of that size, or the next larger one.
QImage PictureFor(const QString& name, qreal dots) {
  for (const int size : kSizes) {
    if (size >= dots) return QImage(FileOf(name, size));
  }
  return QImage(FileOf(name, kSizes.back()));
}

}  // namespace

bool HasIcon(const QString& name) {
  return QFile::exists(FileOf(name, kSizes.front()));
}

void PaintIcon(QPainter& painter, const QRect& place, const QString& name, const QColor& colour) {
  const qreal dots = qMax(place.width(), place.height()) * painter.device()->devicePixelRatioF();
  QImage picture = PictureFor(name, dots).convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QPainter colouring(&picture);
  colouring.setCompositionMode(QPainter::CompositionMode_SourceIn);
  colouring.fillRect(picture.rect(), colour);
  colouring.end();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(place, picture);
}

}  // namespace kv
