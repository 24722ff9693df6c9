#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "dataview/DataTypesView.h"

namespace kv::mdlDataTypesView {

// The regions table. It keeps a copy of the rows that it has announced, so that rows that come and go are told as such
// and the user's selection stays.
class RegionModel final : public QAbstractTableModel {
 public:
  // The size and the format as codes; the text of both is the display text.
  static constexpr int kCodeRole = Qt::UserRole;

  // `view` outlives the model.
  explicit RegionModel(DataTypesView& view);

  void Follow(const GridChanges& changes);

  [[nodiscard]] const RegionRow& RowAt(int row) const { return mRows[static_cast<std::size_t>(row)]; }
  // How old the row's values are: "12 s ago", "edited", "from before", "from the file"; empty when the mode tells it,
  // and where there are none.
  [[nodiscard]] QString AgeOf(int row) const;

  // Whether some of its values are those that the session kept.
  [[nodiscard]] bool HasKept(int row) const;
  // The same, or were read before the controller was out of reach.
  [[nodiscard]] bool HasOld(int row) const;
  // Whether some of its values were entered, and not written since.
  [[nodiscard]] bool HasEdited(int row) const;
  // How fresh the last change of its values is: DataTypesView::RegionMark.
  [[nodiscard]] double MarkOf(int row) const { return mView.RegionMark(static_cast<std::size_t>(row)); }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  template <typename IsSo>
  [[nodiscard]] bool HasCell(int row, IsSo isSo) const;
  void MergeRows();
  void Copy(int first, int last);
  [[nodiscard]] QString Text(const RegionRow& row, RegionColumn column) const;
  [[nodiscard]] QVariant Code(const RegionRow& row, RegionColumn column) const;

  DataTypesView& mView;
  std::vector<RegionRow> mRows;
};

}  // namespace kv::mdlDataTypesView
