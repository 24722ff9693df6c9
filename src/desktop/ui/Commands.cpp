#include "desktop/ui/Commands.h"

#include <QAbstractSpinBox>
#include <QFontDatabase>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QVariant>

namespace kv {

namespace {

constexpr const char* kTip = "kvTip";  // the tooltip of the enabled command

QString WithKeys(const QString& tip, const QString& keys) {
  return keys.isEmpty() ? tip : tip + " (" + keys + ")";
}

template <typename Command>
void SetTip(Command& command, const QString& tip) {
  command.setProperty(kTip, tip);
  command.setToolTip(tip);
  command.setStatusTip(tip);
}

template <typename Command>
void SetAllowed(Command& command, const QString& whyNot) {
  const QString tip = command.property(kTip).toString();
  command.setEnabled(whyNot.isEmpty());
  command.setToolTip(whyNot.isEmpty() ? tip : tip + "\n" + whyNot);
  command.setStatusTip(whyNot.isEmpty() ? tip : tip + ". " + whyNot);  // alone it would read as a message
}

}  // namespace

void Describe(QAction& action, const QString& tip) {
  SetTip(action, WithKeys(tip, action.shortcut().toString(QKeySequence::NativeText)));
}

void Describe(QAbstractButton& button, const QString& tip, const QString& keys) {
  SetTip(button, WithKeys(tip, keys));
  button.setAccessibleDescription(tip);
}

void Allow(QAction& action, const QString& whyNot) {
  SetAllowed(action, whyNot);
}

void Allow(QAbstractButton& button, const QString& whyNot) {
  SetAllowed(button, whyNot);
}

QFont FixedFont(const QFont& like) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSizeF(like.pointSizeF());
  return font;
}

void ShowAsNumber(QWidget& field) {
  field.setFont(FixedFont(field.font()));
  if (auto* edit = dynamic_cast<QLineEdit*>(&field)) edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  if (auto* spin = dynamic_cast<QAbstractSpinBox*>(&field)) spin->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  if (auto* label = dynamic_cast<QLabel*>(&field)) label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

}  // namespace kv
