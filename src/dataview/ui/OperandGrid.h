#pragma once

#include <QTableView>
#include <functional>
#include <span>

#include "dataview/DataTypesView.h"
#include "dataview/operands/PlaceText.h"
#include "dataview/ui/OperandDelegate.h"
#include "dataview/ui/OperandModel.h"

namespace kv::mdlDataTypesView {

// The operand grid: a row a type, a column an address, one rectangle selected. Enter goes on to the next address.
class OperandGrid final : public QTableView {
 public:
  // `view` outlives the grid.
  OperandGrid(DataTypesView& view, QWidget* parent);

  // The user has tried to edit a cell that cannot be changed just now; with the reason.
  std::function<void(const QString& why)> onRefusedEdit;
  // The user wants the selected cells emptied.
  std::function<void()> onClear;

  void Follow(const GridChanges& changes);
  // Takes over hidden rows, column width and cursor as they are kept.
  void ShowSettings();
  // The same without moving the cursor.
  void ShowHiddenRows();

  // Moves the cursor to the operand, into the middle of what is seen.
  void GoTo(const OperandPlace& place);
  // Brings a region's cells into sight; cursor and selection stay.
  void ShowRegion(const Region& region);
  // Draws the frames around the regions' cells anew.
  void ShowFrames(std::span<const std::size_t> selectedRegions);
  [[nodiscard]] bool IsEditing() const { return state() == EditingState; }
  [[nodiscard]] OperandTypeCode CurrentType() const;

  // Empty when nothing is selected.
  [[nodiscard]] GridSelection SelectedRectangle() const;
  // The types of the selected rows that are not hidden, as rows of the grid's own counting (from 1).
  [[nodiscard]] std::vector<std::int32_t> SelectedRows() const;

  // Takes what is being typed; false, and the user is shown why, when it is refused.
  bool TakeTyped() { return mDelegate.TakeTyped(*this); }

  void ChangeColumnWidth(int characters);
  [[nodiscard]] int ColumnWidth() const;

  // Repaints what is seen: marks of changes fade.
  void Fade() { viewport()->update(); }

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  void keyPressEvent(QKeyEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void BuildHeaders();
  void FollowLooks();
  void GoRight();

  DataTypesView& mView;
  RegionFrames mFrames;
  OperandModel mModel;
  OperandDelegate mDelegate;
};

}  // namespace kv::mdlDataTypesView
