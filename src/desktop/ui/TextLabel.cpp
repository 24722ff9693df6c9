#include "desktop/ui/TextLabel.h"

namespace kv {

QLabel* MakeTextLabel(const char* name, const char* what, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(name);
  label->setAccessibleName(what);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

}  // namespace kv
