#include "desktop/ui/Icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>

#include "desktop/ui/IconDrawing.h"

namespace kv {
namespace {

QColor ColourFor(QIcon::Mode mode) {
  const QPalette palette = QGuiApplication::palette();
  if (mode == QIcon::Disabled) return palette.color(QPalette::Disabled, QPalette::ButtonText);
  return palette.color(QPalette::Active, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText);
}

class DrawingEngine final : public QIconEngine {
 public:
  explicit DrawingEngine(QString name) : mName(std::move(name)) {}

  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
    PaintIcon(*painter, place, mName, ColourFor(mode));
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString key =
        QString("kv/%1/%2x%3/%4").arg(mName).arg(size.width()).arg(size.height()).arg(ColourFor(mode).name());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = QPixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect({}, size), mode, state);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
  }

  QString iconName() override { return mName; }
  [[nodiscard]] QIconEngine* clone() const override { return new DrawingEngine(mName); }

 private:
  QString mName;
};

}  // namespace

QIcon IconOf(std::string_view name) {
  const QString asked = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  return QIcon(new DrawingEngine(HasIcon(asked) ? asked : "app"));
}

}  // namespace kv
