#include "desktop/ui/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

// Names the resource of this static library, so that the linker keeps it; has to stand outside of a namespace.
static void LoadPictures() {
  Q_INIT_RESOURCE(desktop_ui);
}

namespace kv {

namespace {

struct Drawn {
  Picture picture;
  const char* file;
};

// clang-format off
constexpr auto kDrawn = std::to_array<Drawn>({
    {Picture::About,     "about"},
    {Picture::Add,       "add"},
    {Picture::App,       "app"},
    {Picture::Cache,     "cache"},
    {Picture::Clone,     "clone"},
    {Picture::Copy,      "copy"},
    {Picture::Cut,       "cut"},
    {Picture::DataTypes, "datatypes"},
    {Picture::Delete,    "delete"},
    {Picture::Designer,  "designer"},
    {Picture::Download,  "download"},
    {Picture::Exit,      "exit"},
    {Picture::Export,    "export"},
    {Picture::Help,      "help"},
    {Picture::Hide,      "hide"},
    {Picture::Images,    "images"},
    {Picture::Import,    "import"},
    {Picture::Link,      "link"},
    {Picture::LogIn,     "login"},
    {Picture::LogOff,    "logoff"},
    {Picture::Model,     "model"},
    {Picture::Modem,     "modem"},
    {Picture::New,       "new"},
    {Picture::Offline,   "offline"},
    {Picture::Online,    "online"},
    {Picture::Open,      "open"},
    {Picture::Pages,     "pages"},
    {Picture::Panel,     "panel"},
    {Picture::Paste,     "paste"},
    {Picture::Pause,     "pause"},
    {Picture::Pid,       "pid"},
    {Picture::Read,      "read"},
    {Picture::ReadAll,   "readall"},
    {Picture::Redo,      "redo"},
    {Picture::Refresh,   "refresh"},
    {Picture::Remove,    "remove"},
    {Picture::Run,       "run"},
    {Picture::Save,      "save"},
    {Picture::Search,    "search"},
    {Picture::Session,   "session"},
    {Picture::Stop,      "stop"},
    {Picture::Table,     "table"},
    {Picture::Test,      "test"},
    {Picture::Trace,     "trace"},
    {Picture::Undo,      "undo"},
    {Picture::Warning,   "warning"},
    {Picture::Write,     "write"},
    {Picture::WriteAll,  "writeall"},
});
// clang-format on
static_assert(kDrawn.size() == kPictureCount);

QByteArray Drawing(Picture picture) {
  const auto drawn = std::ranges::find(kDrawn, picture, &Drawn::picture);
  QFile file(QString(":/kv/icons/%1.svg").arg(drawn->file));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QColor ColourFor(QIcon::Mode mode) {
  const QPalette palette = QGuiApplication::palette();
  if (mode == QIcon::Disabled) return palette.color(QPalette::Disabled, QPalette::ButtonText);
  return palette.color(QPalette::Active, mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText);
}

class PictureEngine final : public QIconEngine {
 public:
  explicit PictureEngine(Picture picture) : mPicture(picture) {}

  void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
    QByteArray drawing = Drawing(mPicture);
    drawing.replace("currentColor", ColourFor(mode).name().toLatin1());
    QSvgRenderer(drawing).render(painter, place);
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const QString key = QString("kv/%1/%2x%3/%4")
                            .arg(static_cast<int>(mPicture))
                            .arg(size.width())
                            .arg(size.height())
                            .arg(ColourFor(mode).name());
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

  [[nodiscard]] QIconEngine* clone() const override { return new PictureEngine(mPicture); }

 private:
  Picture mPicture;
};

}  // namespace

QIcon IconOf(Picture picture) {
  LoadPictures();
  return QIcon(new PictureEngine(picture));
}

}  // namespace kv
