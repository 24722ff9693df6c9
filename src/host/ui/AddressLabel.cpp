#include "host/ui/AddressLabel.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <utility>

#include "desktop/ui/HelpLink.h"

namespace kv {

AddressLabel::AddressLabel(const char* name, std::string_view address, const QString& what, std::function<void()> open,
                           QWidget* parent)
    : QLabel(QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size())), parent),
      mOpen(std::move(open)) {
  setObjectName(name);
  setAccessibleName(what + ": " + text());
  setToolTip(what);
  setTextFormat(Qt::PlainText);
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  QPalette colours = palette();
  colours.setColor(QPalette::Link, ReadableLinkColour(colours));
  setPalette(colours);
  setForegroundRole(QPalette::Link);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

// What has the keys looks as if the pointer were over it: both can open it.
void AddressLabel::ShowLook() {
  QFont look = font();
  look.setUnderline(mIsHovered || hasFocus());
  setFont(look);
  setForegroundRole(mIsHovered ? QPalette::Highlight : QPalette::Link);
}

void AddressLabel::enterEvent(QEnterEvent* event) {
  mIsHovered = true;
  ShowLook();
  QLabel::enterEvent(event);
}

void AddressLabel::leaveEvent(QEvent* event) {
  mIsHovered = false;
  ShowLook();
  QLabel::leaveEvent(event);
}

void AddressLabel::focusInEvent(QFocusEvent* event) {
  QLabel::focusInEvent(event);
  ShowLook();
}

void AddressLabel::focusOutEvent(QFocusEvent* event) {
  QLabel::focusOutEvent(event);
  ShowLook();
}

void AddressLabel::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) mOpen();
}

void AddressLabel::keyPressEvent(QKeyEvent* event) {
  const bool isOpen = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
  isOpen ? mOpen() : QLabel::keyPressEvent(event);
}

}  // namespace kv
