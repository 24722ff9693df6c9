#pragma once

#include <QFont>
#include <QStyledItemDelegate>

#include "dataview/DataTypesView.h"

namespace kv::mdlDataTypesView {

class RegionModel;

// The size or the format of a region: a list of what the catalogue offers for its type and size, open at once.
class ChoiceDelegate final : public QStyledItemDelegate {
 public:
  // `model` outlives the delegate.
  explicit ChoiceDelegate(const RegionModel& model) : mModel(model) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void setEditorData(QWidget* editor, const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

 private:
  const RegionModel& mModel;
};

// The values of a region in the fixed-width face, and behind them their age while they are not refreshed. Values that
// have just changed are marked as in the operand grid; old ones are faint.
class RegionValuesDelegate final : public QStyledItemDelegate {
 public:
  explicit RegionValuesDelegate(const RegionModel& model) : mModel(model) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  const RegionModel& mModel;
};

}  // namespace kv::mdlDataTypesView
