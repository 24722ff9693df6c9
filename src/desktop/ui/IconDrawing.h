#pragma once

#include <QColor>
#include <QPainter>
#include <QRect>
#include <QString>

namespace kv {

// Icons are drawn in one colour, from the drawings in src/desktop/ui/icons; where Qt reads no such drawings, from
// pictures that were made of them when the program was built.
[[nodiscard]] bool HasIcon(const QString& name);
void PaintIcon(QPainter& painter, const QRect& place, const QString& name, const QColor& colour);

}  // namespace kv
