#pragma once

#include <QAbstractTableModel>

#include "dataview/DataTypesView.h"

namespace kv::mdlDataTypesView {

// The operand grid as the toolkit counts it: row 0 is the type with code 1, column 0 the address 0; the types' names
// head the rows. It shows the view's operands and keeps no text of its own.
class OperandModel final : public QAbstractTableModel {
 public:
  // `view` outlives the model.
  explicit OperandModel(DataTypesView& view);

  // Announces the changes as one span. The cell that is being edited may lie in it: its editor keeps what is typed.
  void Follow(const GridChanges& changes);

  [[nodiscard]] static OperandTypeCode TypeAt(int row) { return TypeOfRow(row + 1); }
  [[nodiscard]] bool IsCell(const QModelIndex& index) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  // False, and nothing changed, for a text that the operand cannot have.
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  [[nodiscard]] QString AgeOf(OperandTypeCode type, int address) const;
  [[nodiscard]] QString Describe(const QModelIndex& index) const;
  [[nodiscard]] QVariant TypeHeader(int row, int role) const;

  DataTypesView& mView;
  int mColumns = 0;
};

}  // namespace kv::mdlDataTypesView
