#include "dataview/ui/ScrolledText.h"

#include <QLabel>
#include <QScrollBar>
#include <algorithm>

namespace kv::mdlDataTypesView {

ScrolledText::ScrolledText(QLabel* label, QWidget* parent) : QScrollArea(parent), mLabel(label) {
  setFrameStyle(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWidget(mLabel);
  mLabel->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  mLabel->show();
  viewport()->setAutoFillBackground(false);
  mLabel->setAutoFillBackground(false);
  QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  hide();
}

bool ScrolledText::SetText(const QString& text) {
  setVisible(!text.isEmpty());
  if (mLabel->text() == text) return false;
  mLabel->setText(text);
  Fold(false);
  return true;
}

void ScrolledText::Fold(bool isFolded) {
  mIsFolded = isFolded;
  setVerticalScrollBarPolicy(isFolded ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
  verticalScrollBar()->setValue(0);
  updateGeometry();
}

int ScrolledText::heightForWidth(int width) const {
  return mIsFolded ? fontMetrics().lineSpacing() : mLabel->heightForWidth(width);
}

QSize ScrolledText::sizeHint() const {
  return {mLabel->sizeHint().width(), heightForWidth(std::max(width(), 1))};
}

QSize ScrolledText::minimumSizeHint() const {
  return {0, fontMetrics().lineSpacing()};
}

}  // namespace kv::mdlDataTypesView
