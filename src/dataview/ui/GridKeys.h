#pragma once

#include <QKeyEvent>
#include <QTableView>
#include <functional>

#include "desktop/ui/MenuKey.h"

namespace kv::mdlDataTypesView {

// The keys of both grids: Delete, and the one that opens the context menu at the cursor. False: the key is another one.
[[nodiscard]] inline bool TakeGridKey(QTableView& grid, QKeyEvent& event, const std::function<void()>& onDelete) {
  if (event.key() == Qt::Key_Delete && event.modifiers() == Qt::NoModifier && onDelete) {
    onDelete();
    event.accept();
    return true;
  }
  if (!IsMenuKey(event)) return false;
  emit grid.customContextMenuRequested(grid.visualRect(grid.currentIndex()).center());
  return true;
}

}  // namespace kv::mdlDataTypesView
