#include "desktop/ui/QtClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace kv {

bool QtClipboard::HasText() const {
  const QMimeData* data = QGuiApplication::clipboard()->mimeData();
  return data && data->hasText();
}

std::string QtClipboard::GetText() const {
  return QGuiApplication::clipboard()->text().toStdString();
}

void QtClipboard::SetText(std::string_view text) {
  QGuiApplication::clipboard()->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

}  // namespace kv
