#pragma once

#include <QTableView>
#include <cstdint>
#include <functional>
#include <vector>

#include "dataview/DataTypesView.h"
#include "dataview/ui/CellEditDelegate.h"
#include "dataview/ui/RegionDelegates.h"
#include "dataview/ui/RegionModel.h"

namespace kv::mdlDataTypesView {

// The regions table: whole rows are selected; description, size and format are edited in place.
class RegionGrid final : public QTableView {
 public:
  // `view` outlives the grid.
  RegionGrid(DataTypesView& view, QWidget* parent);

  // The user wants the selected regions removed.
  std::function<void()> onRemove;

  void Follow(const GridChanges& changes) { mModel.Follow(changes); }
  // Takes over the column widths as they are kept.
  void ShowSettings();

  [[nodiscard]] bool IsEditing() const { return state() == EditingState; }
  // Takes the description that is being typed.
  bool TakeTyped() { return mText.TakeTyped(*this); }

  // Whether a region shows values that the session kept.
  [[nodiscard]] bool HasKept() const;
  // The indices of the selected regions, in the order of the table.
  [[nodiscard]] std::vector<std::size_t> SelectedRegions() const;
  // One a column, the hidden one among them.
  [[nodiscard]] std::vector<std::int32_t> ColumnWidths() const;

  // Repaints the ages.
  void ShowAges() { viewport()->update(); }

 protected:
  // By the keyboard with nothing selected: the region at the cursor is, or its commands would have none.
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  // What to do, where there are no regions.
  void paintEvent(QPaintEvent* event) override;

 private:
  void BuildHeaders();

  DataTypesView& mView;
  RegionModel mModel;
  CellEditDelegate mText;
  ChoiceDelegate mChoice;
  RegionValuesDelegate mValues;
};

}  // namespace kv::mdlDataTypesView
