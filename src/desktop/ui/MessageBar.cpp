#include "desktop/ui/MessageBar.h"

#include <QLabel>

#include "desktop/ui/ElidedLabel.h"

namespace kv {

MessageBar::MessageBar(QWidget* parent) : QStatusBar(parent), mMessage(new ElidedLabel(this)) {
  setObjectName("statusBar");
  mMessage->setObjectName("lblMessage");
  mMessage->setAccessibleName("Message");
  addWidget(mMessage, 1);
}

void MessageBar::ShowText(const QString& message) {
  mMessage->SetFullText(message);
}

QLabel* MessageBar::AddField(const char* name, const QString& what) {
  auto* field = new QLabel(this);
  field->setObjectName(name);
  field->setAccessibleName(what);
  field->setToolTip(what);
  field->setTextFormat(Qt::PlainText);
  field->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  field->setMargin(2);
  addPermanentWidget(field);
  return field;
}

}  // namespace kv
