#include "dataview/ui/CellEditDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPersistentModelIndex>
#include <QToolTip>
#include <QVariant>

#include "dataview/ui/GridColours.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kFrame = 2;  // of a refused text, in pixels of a normal screen
constexpr const char* kCellEditor = "cellEditor";
constexpr const char* kBusyOverlay = "busyOverlay";

// A line edit that shows why its text is refused.
class CellEditor final : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;

  [[nodiscard]] bool IsFilled() const { return mIsFilled; }
  void Fill(const QString& text) {
    mIsFilled = true;
    setText(text);
  }

  [[nodiscard]] bool IsRefused() const { return !mFault.isEmpty(); }
  void SetFault(const QString& fault) {
    mFault = fault;
    setToolTip(fault);
    setAccessibleDescription(fault);
    update();
    TellFault();
  }
  void TellFault() {
    if (IsRefused()) {
      QToolTip::showText(mapToGlobal(rect().bottomLeft()), mFault, this);
    } else {
      QToolTip::hideText();
    }
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QLineEdit::paintEvent(event);
    if (!IsRefused()) return;
    QPainter painter(this);
    painter.setPen(QPen(ColoursFor(palette()).fault, kFrame));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
  }

 private:
  QString mFault;
  bool mIsFilled = false;
};

bool IsCommitKey(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab || key == Qt::Key_Backtab;
}

// The overlay of the busy state takes the focus for a while and gives it back.
bool IsFocusWithOverlay() {
  for (const QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
    if (widget->objectName() == kBusyOverlay) return true;
  }
  return false;
}

}  // namespace

bool CellEditDelegate::TakeTyped(const QAbstractItemView& grid) {
  auto* editor = dynamic_cast<CellEditor*>(grid.viewport()->findChild<QLineEdit*>(kCellEditor));
  if (!editor || !editor->isVisible()) return true;  // one that is closed goes later
  if (editor->IsRefused()) {
    editor->setFocus();
    editor->TellFault();
    return false;
  }
  emit commitData(editor);
  emit closeEditor(editor);
  return true;
}

QWidget* CellEditDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
  auto* editor = new CellEditor(parent);
  editor->setObjectName(kCellEditor);
  editor->setAccessibleName(index.data(Qt::AccessibleTextRole).toString());
  editor->setFrame(false);
  editor->setFont(option.font);
  editor->setAlignment(Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt()));
  editor->setAutoFillBackground(true);
  const auto judge = [this, editor, place = QPersistentModelIndex(index)](const QString& text) {
    editor->SetFault(mFault(place, text));
  };
  connect(editor, &QLineEdit::textEdited, editor, judge);
  return editor;
}

void CellEditDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* line = static_cast<CellEditor*>(editor);
  if (!line->IsFilled()) line->Fill(index.data(Qt::EditRole).toString());
}

void CellEditDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  const auto* line = static_cast<CellEditor*>(editor);
  if (!line->IsRefused() && line->isModified()) model->setData(index, line->text(), Qt::EditRole);
}

bool CellEditDelegate::eventFilter(QObject* object, QEvent* event) {
  auto* editor = dynamic_cast<CellEditor*>(object);
  if (!editor) return QStyledItemDelegate::eventFilter(object, event);
  if (event->type() == QEvent::FocusOut && IsFocusWithOverlay()) return false;
  if (editor->IsRefused()) {
    if (IsCommitKey(*event)) {
      editor->TellFault();
      return true;
    }
    if (event->type() == QEvent::FocusOut) {
      emit closeEditor(editor, RevertModelCache);
      return false;
    }
  }
  return QStyledItemDelegate::eventFilter(object, event);
}

}  // namespace kv::mdlDataTypesView
