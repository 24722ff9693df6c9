#include "desktop/ui/ContextMenu.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <utility>

#include "desktop/ui/MenuKey.h"

namespace kv {
namespace {

using Show = std::function<void(const QModelIndex& row, const QPoint& at)>;

class MenuAsker final : public QObject {
 public:
  MenuAsker(QAbstractItemView& view, Show show) : QObject(&view), mView(view), mShow(std::move(show)) {
    mView.installEventFilter(this);
    mView.viewport()->installEventFilter(this);
  }

 protected:
  // The key's event goes to the view, which has the focus, the mouse's to its viewport.
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::KeyPress && IsMenuKey(static_cast<const QKeyEvent&>(*event))) {
      ShowAtCurrent();
      return true;
    }
    if (event->type() != QEvent::ContextMenu) return false;
    const auto& asked = static_cast<const QContextMenuEvent&>(*event);
    if (asked.reason() == QContextMenuEvent::Keyboard) {
      ShowAtCurrent();
    } else {
      mShow(mView.indexAt(mView.viewport()->mapFromGlobal(asked.globalPos())), asked.globalPos());
    }
    return true;
  }

 private:
  void ShowAtCurrent() {
    const QModelIndex row = mView.currentIndex();
    if (row.isValid()) mView.scrollTo(row);
    mShow(row, mView.viewport()->mapToGlobal(mView.visualRect(row).bottomLeft()));
  }

  QAbstractItemView& mView;
  Show mShow;
};

}  // namespace

void OnContextMenu(QAbstractItemView& view, Show show) {
  new MenuAsker(view, std::move(show));
}

}  // namespace kv
