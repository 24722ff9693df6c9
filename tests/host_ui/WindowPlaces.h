#pragma once

#include <QAbstractScrollArea>
#include <QApplication>
#include <QHeaderView>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainterPath>
#include <QRegularExpression>
#include <QScrollBar>
#include <QWidget>
#include <string>

#include "tests/host_ui/WindowLook.h"

namespace kv::test {

// Writes down what is painted on it, a line for each stroke.
class PaintRecord final : public QPaintDevice {
 public:
  explicit PaintRecord(const QSize& size) : mSize(size), mEngine(mText) {}
  [[nodiscard]] QPaintEngine* paintEngine() const override { return &mEngine; }
  [[nodiscard]] const std::string& Text() const { return mText; }

 protected:
  [[nodiscard]] int metric(PaintDeviceMetric metric) const override {
    switch (metric) {
      case PdmWidth:
        return mSize.width();
      case PdmHeight:
        return mSize.height();
      case PdmDevicePixelRatio:
        return 1;
      case PdmDevicePixelRatioScaled:
        return static_cast<int>(devicePixelRatioFScale());
      default:
        return 96;  // dots per inch; the rest is not asked for
    }
  }

 private:
  class Engine final : public QPaintEngine {
   public:
    explicit Engine(std::string& text) : QPaintEngine(AllFeatures), mText(text) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    [[nodiscard]] Type type() const override { return User; }
    void updateState(const QPaintEngineState&) override {}
    void drawPath(const QPainterPath& path) override {
      const QPainterPath placed = state->transform().map(path);
      QString points;
      for (int i = 0; i < placed.elementCount(); ++i) points += At(placed.elementAt(i)) + " ";
      Add("shape " + points + Colours());
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
      QPainterPath path(points[0]);
      for (int i = 1; i < count; ++i) path.lineTo(points[i]);
      if (mode != PolylineMode) path.closeSubpath();
      drawPath(path);
    }
    void drawPixmap(const QRectF& place, const QPixmap&, const QRectF& part) override { AddPicture(place, part); }
    void drawImage(const QRectF& place, const QImage&, const QRectF& part, Qt::ImageConversionFlags) override {
      AddPicture(place, part);
    }
    void drawTextItem(const QPointF& place, const QTextItem& text) override {
      const QFont font = text.font();
      Add(QString("text %1 %2pt%3%4 %5 \"%6\"")
              .arg(At(state->transform().map(place)))
              .arg(font.pointSizeF())
              .arg(font.bold() ? " bold" : "", font.italic() ? " italic" : "", state->pen().color().name(),
                   text.text()));
    }

   private:
    static QString At(const QPointF& point) {
      return QString("%1,%2").arg(point.x(), 0, 'f', 1).arg(point.y(), 0, 'f', 1);
    }
    void AddPicture(const QRectF& place, const QRectF& part) {
      const QRectF placed = state->transform().mapRect(place);
      Add(QString("picture %1 %2 of %3 %4%5")
              .arg(At(placed.topLeft()), At(placed.bottomRight()), At(part.topLeft()), At(part.bottomRight()),
                   state->renderHints() & QPainter::SmoothPixmapTransform ? " smooth" : ""));
    }
    [[nodiscard]] QString Colours() const {
      const QPen& pen = state->pen();
      const QBrush& brush = state->brush();
      QString colours;
      if (pen.style() != Qt::NoPen)
        colours += QString("pen %1 %2 ").arg(pen.color().name(QColor::HexArgb)).arg(pen.widthF());
      if (pen.style() > Qt::SolidLine) colours += QString("style %1 ").arg(static_cast<int>(pen.style()));
      if (brush.style() != Qt::NoBrush) colours += "filled " + brush.color().name(QColor::HexArgb);
      return colours;
    }
    void Add(const QString& line) { mText += "@ " + line.trimmed().toStdString() + "\n"; }
    std::string& mText;
  };

  QSize mSize;
  std::string mText;
  mutable Engine mEngine;
};

// The strokes that a control is drawn with, and what lies on it.
inline std::string DrawnText(QWidget& control) {
  auto* area = dynamic_cast<QAbstractScrollArea*>(&control);
  QWidget& drawn = area ? *area->viewport() : control;
  PaintRecord record(drawn.size());
  drawn.render(&record, {}, {}, QWidget::DrawChildren);
  return record.Text();
}

// Without what follows the system's own style, on Windows: the lines that tell places and strokes, and sizes of
// columns.
inline std::string ToldHere(const std::string& record) {
#ifdef _WIN32
  return QString::fromStdString(record)
      .remove(QRegularExpression(R"((^|(?<=\n)) *@[^\n]*\n)"))
      .remove(QRegularExpression(" (minimumSectionSize|defaultSectionSize)=\\w+"))
      .toStdString();
#else
  return record;
#endif
}

// Where everything in a window stands, how large it is, and what letters and colours of its own it has.
inline std::string PlacesText(const QWidget& window) {
  std::string text;
  const auto pair = [](int x, int y) { return " " + std::to_string(x) + "," + std::to_string(y); };
  const auto add = [&](const QWidget& widget) {
    const QPoint corner = &widget == &window ? QPoint() : widget.mapTo(&window, QPoint());
    const QString kind = QString(widget.metaObject()->className()).section("::", -1);
    text += "@ " + kind.toStdString() + " " + widget.objectName().toStdString() + pair(corner.x(), corner.y()) + " is" +
            pair(widget.width(), widget.height());
    if (!widget.minimumSize().isNull()) text += " least" + pair(widget.minimumWidth(), widget.minimumHeight());
    constexpr int kNoMaximum = QWIDGETSIZE_MAX;
    if (widget.maximumSize() != QSize(kNoMaximum, kNoMaximum))
      text += " most" + pair(widget.maximumWidth(), widget.maximumHeight());
    if (widget.font().pointSizeF() != QApplication::font().pointSizeF())
      text += QString(" %1pt").arg(widget.font().pointSizeF()).toStdString();
    if (widget.font().italic()) text += " italic";
    if (widget.cursor().shape() != Qt::ArrowCursor) text += " pointer " + std::to_string(widget.cursor().shape());
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
      const auto colour = static_cast<QPalette::ColorRole>(role);
      const QColor own = widget.palette().color(QPalette::Active, colour);
      if (own != QApplication::palette(&widget).color(QPalette::Active, colour))
        text += " colour" + std::to_string(role) + own.name().toStdString();
    }
    if (const auto* bar = dynamic_cast<const QScrollBar*>(&widget)) text += pair(bar->value(), bar->maximum());
    if (const auto* head = dynamic_cast<const QHeaderView*>(&widget)) {
      for (int i = 0; i < std::min(head->count(), 20); ++i) {
        text += " " + std::to_string(head->sectionSize(i));
        for (const int role : {Qt::ForegroundRole, Qt::BackgroundRole}) {
          const QVariant colour = head->model()->headerData(i, head->orientation(), role);
          if (colour.isValid()) text += colour.value<QBrush>().color().name().toStdString();
        }
      }
    }
    text += "\n";
  };
  add(window);
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (widget->isVisibleTo(&window) && widget->window() == window.window()) add(*widget);
  }
  return text;
}

}  // namespace kv::test
