#include "help/ui/HelpBrowser.h"

#include <QImage>

#include "desktop/ui/HelpLink.h"

namespace kv {
namespace {

// Pages and pictures are named "help:/cloner.html", so that nothing is looked for in the file system.
constexpr const char* kScheme = "help";
constexpr int kMargin = 40;  // beside a picture, for the page's edges and the scroll bar

// The style of a page is for a web browser; here the window's own is better.
QString WithoutStyle(QString page) {
  const qsizetype begin = page.indexOf("<style>");
  const qsizetype end = page.indexOf("</style>", begin);
  return begin < 0 || end < 0 ? page : page.remove(begin, end - begin);
}

}  // namespace

std::string HelpPageName(const QUrl& address) {
  return address.path().mid(1).toStdString();
}

HelpBrowser::HelpBrowser(const HelpBook& book, QWidget* parent) : QTextBrowser(parent), mBook(book) {
  setObjectName("brwPage");
  setAccessibleName("Page of the help");
  document()->setDocumentMargin(12);
}

void HelpBrowser::ShowPage(const std::string& page) {
  setSource(QUrl(QString(kScheme) + ":/" + QString::fromStdString(page)));
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
  if (name.scheme() != kScheme) return {};
  const auto content = mBook.Read(HelpPageName(name));
  if (type == QTextDocument::ImageResource) return content ? Picture(*content) : QVariant();
  if (type != QTextDocument::HtmlResource) return {};
  return content ? WithoutStyle(QString::fromStdString(*content))
                 : "<h1>This page is not in the help</h1><p>" +
                       QString::fromStdString(HelpPageName(name)).toHtmlEscaped() + "</p>";
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
  if (name.scheme() != kScheme) return;  // an address outside of the help opens nothing
  document()->setDefaultStyleSheet(
      "td, th { padding: 2px 10px 2px 0; } th { text-align: left; } table { margin: 8px 0; } a { color: " +
      ReadableLinkColour(palette()).name() + "; }");
  QTextBrowser::doSetSource(name, type);
}

// As wide as there is room for it; sharp on a screen with small pixels.
QVariant HelpBrowser::Picture(const std::string& content) const {
  QImage picture = QImage::fromData(reinterpret_cast<const uchar*>(content.data()), static_cast<int>(content.size()));
  const int room = viewport()->width() - kMargin;
  if (picture.isNull() || picture.width() <= room || room <= 0) return picture;
  const double scale = devicePixelRatioF();
  const int wide = std::min(picture.width(), static_cast<int>(room * scale));
  picture = picture.scaledToWidth(wide, Qt::SmoothTransformation);
  picture.setDevicePixelRatio(scale);
  return picture;
}

}  // namespace kv
