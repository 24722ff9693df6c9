#pragma once

#include <QLineEdit>
#include <QStyledItemDelegate>
#include <functional>

class QAbstractItemView;

namespace kv::mdlDataTypesView {

// Editing of a cell as text: the text is set once, when the editor opens, so a refresh under it does not take away
// what is being typed; a text that is refused shows a red frame with the reason and cannot be committed. Leaving the
// cell, like Escape, gives the old text back then.
class CellEditDelegate : public QStyledItemDelegate {
 public:
  // Why the text cannot be taken; empty when it can.
  using Fault = std::function<QString(const QModelIndex& index, const QString& text)>;

  explicit CellEditDelegate(Fault fault) : mFault(std::move(fault)) {}

  // Before a command of the view: takes what is being typed into a cell of `grid`, which uses this delegate. False, and
  // the user is shown why, when the text is refused.
  bool TakeTyped(const QAbstractItemView& grid);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  Fault mFault;
};

}  // namespace kv::mdlDataTypesView
