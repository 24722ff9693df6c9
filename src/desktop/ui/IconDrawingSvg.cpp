#include <QFile>
#include <QSvgRenderer>

#include "desktop/ui/IconDrawing.h"

namespace kv {
namespace {

QString FileOf(const QString& name) {
  return ":/kv/icons/" + name + ".svg";
}

}  // namespace

bool HasIcon(const QString& name) {
  return QFile::exists(FileOf(name));
}

void PaintIcon(QPainter& painter, const QRect& place, const QString& name, const QColor& colour) {
  QFile file(FileOf(name));
  QByteArray drawing = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  drawing.replace("currentColor", colour.name().toLatin1());
  QSvgRenderer(drawing).render(&painter, place);
}

}  // namespace kv
