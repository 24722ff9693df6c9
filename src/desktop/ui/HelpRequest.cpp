#include "desktop/ui/HelpRequest.h"

#include <QCoreApplication>

namespace kv {

QEvent::Type HelpRequest::Kind() {
  static const int kKind = QEvent::registerEventType();
  return static_cast<QEvent::Type>(kKind);
}

void RequestHelp(QWidget& on, const QString& message) {
  HelpRequest request(message);
  QCoreApplication::sendEvent(&on, &request);
}

}  // namespace kv
