#include "desktop/ui/HelpLink.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QPlainTextEdit>
#include <algorithm>

#include "desktop/ui/HelpRequest.h"

namespace kv {

HelpLink::HelpLink(QWidget* parent) : QLabel("<a href=\"help\">Help on this</a>", parent) {
  setObjectName("lnkHelp");
  setAccessibleName("Help on this");
  setToolTip("Opens the page of the help on this error");
  setTextFormat(Qt::RichText);
  setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  connect(this, &QLabel::linkActivated, this, [this] { RequestHelp(*this, mError); });
  TakeColour();
  hide();
}

void HelpLink::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) TakeColour();
}

void HelpLink::TakeColour() {
  const QColor colour = ReadableLinkColour(QGuiApplication::palette());
  if (palette().color(QPalette::Link) == colour) return;
  QPalette colours = palette();
  colours.setColor(QPalette::Link, colour);
  setPalette(colours);
}

void HelpLink::Follow(const QString& error) {
  mError = error;
  setVisible(TellsWhatToDo(error));
}

void HelpLink::FollowLast(const QPlainTextEdit& list) {
  connect(&list, &QPlainTextEdit::textChanged, this, [this, &list] {
    const QString text = list.toPlainText();
    const qsizetype cure = text.lastIndexOf("What to do: ");
    const qsizetype cause = cure < 0 ? -1 : text.lastIndexOf('\n', std::max<qsizetype>(0, cure - 2));
    const qsizetype error = cause < 0 ? -1 : text.lastIndexOf('\n', std::max<qsizetype>(0, cause - 1));
    Follow(text.mid(error + 1));
  });
}

QColor ReadableLinkColour(const QPalette& palette) {
  constexpr int kDark = 128;  // lightness, of 255
  const QColor link = palette.color(QPalette::Link);
  const bool isDark = palette.color(QPalette::Base).lightness() < kDark;
  return isDark && link.lightness() <= kDark ? QColor(0x6C, 0xB2, 0xFF) : link;
}

bool TellsWhatToDo(const QString& text) {
  return text.contains("What to do: ");
}

}  // namespace kv
