#include "desktop/ui/ScrollPage.h"

#include <QEvent>
#include <QScrollBar>
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
  const QSize content = widget()->sizeHint();
  const int forWidth = widget()->heightForWidth(content.width());
  return {content.width(), std::max(content.height(), forWidth)};
}

QSize ScrollPage::minimumSizeHint() const {
  const int width = widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width();
  return {width, std::min(widget()->sizeHint().height(), kFewestLines * fontMetrics().lineSpacing())};
}

bool ScrollPage::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget() && event->type() == QEvent::LayoutRequest) FollowContent();
  return QScrollArea::eventFilter(watched, event);
}

// Before the window is seen: one that is resized right after it has been mapped loses the place that was chosen for it.
void ScrollPage::showEvent(QShowEvent* event) {
  QScrollArea::showEvent(event);
  FollowContent();
}

int ScrollPage::AskedHeight() const {
  // Before the window has its size, the viewport is narrower than any content. Scroll bars go when it fits.
  const int width = std::max(maximumViewportSize().width(), widget()->minimumSizeHint().width());
  return std::max(widget()->sizeHint().height(), widget()->heightForWidth(width));
}

void ScrollPage::FollowContent() {
  updateGeometry();
  const int change = AskedHeight() - maximumViewportSize().height();
  if (!isVisible() || change == 0 || window()->windowType() != Qt::Dialog || window()->isMaximized()) return;
  const int height = std::min(window()->height() + change, RoomFor(*window()).height());
  window()->resize(window()->width(), std::max(height, window()->minimumSizeHint().height()));
}

}  // namespace kv
