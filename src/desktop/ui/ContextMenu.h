#pragma once

#include <QAbstractItemView>
#include <functional>

namespace kv {

// Calls `show` when the user asks for the context menu of `view`: with the right mouse button, for the row under the
// pointer (an invalid index over empty ground), or with Shift+F10 or the menu key, for the current row, beside which
// the menu then stands. `at` is a place on the screen. To be called once for a view.
void OnContextMenu(QAbstractItemView& view, std::function<void(const QModelIndex& row, const QPoint& at)> show);

}  // namespace kv
