#pragma once

#include <QKeyEvent>

namespace kv {

// Shift+F10 opens a context menu as the menu key does, which not every keyboard has; not every platform sees to it.
[[nodiscard]] inline bool IsMenuKey(const QKeyEvent& key) {
  return key.key() == Qt::Key_F10 && key.modifiers() == Qt::ShiftModifier;
}

}  // namespace kv
