#include "desktop/ui/ScrollPage.h"

#include <QEvent>
#include <QLayout>
#include <QScrollBar>
#include <QWindow>
#include <algorithm>

#include "desktop/ui/WindowGeometry.h"

namespace kv {
namespace {

constexpr int kFewestLines = 4;

}  // namespace

ScrollPage::ScrollPage(QWidget* content, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(NoFrame);
  setWidgetResizable(true);
  setFocusPolicy(Qt::NoFocus);  // Tab goes to the controls, which are scrolled into sight
  setWidget(content);
  content->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
}

QSize ScrollPage::sizeHint() const {
  return {widget()->sizeHint().width(), AskedHeight()};
}

QSize ScrollPage::minimumSizeHint() const {
  const int width = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
  return {width, std::min(widget()->sizeHint().height(), kFewestLines * fontMetrics().lineSpacing())};
}

bool ScrollPage::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget() && event->type() == QEvent::LayoutRequest && !IsBeingPlaced()) FollowContent();
  if (watched == window()->windowHandle() && event->type() == QEvent::Expose && !IsBeingPlaced()) FollowContent();
  return QScrollArea::eventFilter(watched, event);
}

void ScrollPage::showEvent(QShowEvent* event) {
  QScrollArea::showEvent(event);
  FollowContent();
  if (window()->windowHandle()) window()->windowHandle()->installEventFilter(this);
}

// The desktop is choosing its place and does not show it yet. Whoever resizes it now takes it to where it was for a
// moment: the upper left corner, with its title above the screen.
bool ScrollPage::IsBeingPlaced() const {
  const QWindow* shown = window()->windowHandle();
  return shown && window()->isVisible() && !shown->isExposed();
}

int ScrollPage::AskedHeight() const {
  // Before the window has its size, the viewport is narrower than any content. Scroll bars go when it fits.
  const int viewport = maximumViewportSize().width();
  const int least = widget()->minimumSizeHint().width();
  const int width = viewport < least ? widget()->sizeHint().width() : viewport;
  // The least can be more than what is asked for: an empty label wants a line, and asks for none.
  return std::max(
      {widget()->sizeHint().height(), widget()->minimumSizeHint().height(), widget()->heightForWidth(width)});
}

void ScrollPage::FollowContent() {
  updateGeometry();
  // Beside what takes all room that is left, the page has no more than it asks for.
  if (window()->layout()) window()->layout()->activate();
  const int change = AskedHeight() - maximumViewportSize().height();
  if (!isVisible() || change == 0 || window()->windowType() != Qt::Dialog || window()->isMaximized()) return;
  const int height = std::min(window()->height() + change, RoomFor(*window()).height());
  window()->resize(window()->width(), std::max(height, window()->minimumSizeHint().height()));
}

}  // namespace kv
