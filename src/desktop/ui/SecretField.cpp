#include "desktop/ui/SecretField.h"

#include <QLineEdit>
#include <string_view>

namespace kv {

void MakeSecret(QLineEdit& field) {
  field.setEchoMode(QLineEdit::Password);
  field.setInputMethodHints(field.inputMethodHints() | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText |
                            Qt::ImhNoAutoUppercase);
}

Secret TakeSecret(QLineEdit& field) {
  const QString text = field.text();
  QByteArray utf8 = text.toUtf8();
  Secret secret(std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
  WipeBytes(utf8.data(), static_cast<std::size_t>(utf8.size()));
  field.setText({});  // the field lets its text go, and it is ours alone
  WipeBytes(const_cast<QChar*>(text.constData()), static_cast<std::size_t>(text.size()) * sizeof(QChar));
  return secret;
}

}  // namespace kv
