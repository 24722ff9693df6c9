#include "dataview/ui/RegionModel.h"

#include <algorithm>
#include <array>
#include <functional>

#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::array<const char*, kRegionColumnCount> kHeadings{"Code",        "Operand Type", "From",   "To",
                                                                "Description", "Size",         "Format", "Values"};

QString FromView(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool IsNumber(RegionColumn column) {
  return column == RegionColumn::Type || column == RegionColumn::From || column == RegionColumn::To;
}

}  // namespace

RegionModel::RegionModel(DataTypesView& view)
    : mView(view), mRows(view.Regions().Rows().begin(), view.Regions().Rows().end()) {}

void RegionModel::Follow(const GridChanges& changes) {
  if (changes.regionRowsReplaced) return MergeRows();
  const int last = std::min(changes.lastRegion, rowCount() - 1);
  const int first = changes.firstRegion;
  if (last < first) return;
  Copy(first, last);
  const auto from = changes.onlyValues ? RegionColumn::Values : RegionColumn::Type;
  emit dataChanged(index(first, static_cast<int>(from)), index(last, kRegionColumnCount - 1));
}

// What stands before and behind the rows that came or went stays in its place.
void RegionModel::MergeRows() {
  const auto now = mView.Regions().Rows();
  const auto front = std::ranges::mismatch(mRows, now, {}, &RegionRow::region, &RegionRow::region).in1 - mRows.begin();
  const auto common = std::min(mRows.size(), now.size()) - static_cast<std::size_t>(front);
  std::size_t back = 0;
  while (back < common && mRows[mRows.size() - 1 - back].region == now[now.size() - 1 - back].region) ++back;
  const int first = static_cast<int>(front);
  const int gone = rowCount() - first - static_cast<int>(back);
  const int come = static_cast<int>(now.size()) - first - static_cast<int>(back);
  if (gone > 0) {
    beginRemoveRows({}, first, first + gone - 1);
    mRows.erase(mRows.begin() + first, mRows.begin() + first + gone);
    endRemoveRows();
  }
  if (come > 0) {
    beginInsertRows({}, first, first + come - 1);
    mRows.insert(mRows.begin() + first, now.begin() + first, now.begin() + first + come);
    endInsertRows();
  }
  if (mRows.empty()) return;
  Copy(0, rowCount() - 1);
  emit dataChanged(index(0, 0), index(rowCount() - 1, kRegionColumnCount - 1));
}

void RegionModel::Copy(int first, int last) {
  const auto now = mView.Regions().Rows();
  std::ranges::copy(now.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first + 1)),
                    mRows.begin() + first);
}

QString RegionModel::AgeOf(int row) const {
  if (RowAt(row).values.empty()) return {};
  if (HasEdited(row)) return "edited";
  if (RowAt(row).isFromFile) return "from the file";
  if (mView.Status().mode == ViewMode::Online) return {};
  const std::string age = mView.AgeText(static_cast<std::size_t>(row));
  if (!age.empty()) return QString::fromStdString(age) + " ago";
  return HasKept(row) ? "from before" : "";
}

template <typename IsSo>
bool RegionModel::HasCell(int row, IsSo isSo) const {
  const Region& region = RowAt(row).region;
  for (std::int32_t address = region.from; address <= region.to; ++address) {
    if (isSo(mView.Operands(), region.type, address)) return true;
  }
  return false;
}

bool RegionModel::HasKept(int row) const {
  return HasCell(row, std::mem_fn(&OperandStore::IsKept));
}

bool RegionModel::HasOld(int row) const {
  return HasCell(row, std::mem_fn(&OperandStore::IsOld));
}

bool RegionModel::HasEdited(int row) const {
  return HasCell(row, [](const OperandStore& operands, OperandTypeCode type, std::int32_t address) {
    return operands.Origin(type, address) == CellOrigin::Edited;
  });
}

int RegionModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mRows.size());
}

int RegionModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kRegionColumnCount;
}

QVariant RegionModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const RegionRow& row = RowAt(index.row());
  const auto column = static_cast<RegionColumn>(index.column());
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return Text(row, column);
    case kCodeRole:
      return Code(row, column);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue((IsNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case Qt::ToolTipRole: {
      const QString age = AgeOf(index.row());
      return Text(row, column) + (age.isEmpty() || column != RegionColumn::Values ? "" : "\nValues " + age);
    }
    default:
      return {};
  }
}

QString RegionModel::Text(const RegionRow& row, RegionColumn column) const {
  switch (column) {
    case RegionColumn::Type:
      return QString::number(static_cast<int>(row.region.type));
    case RegionColumn::Name:
      return FromView(TypeName(row.region.type));
    case RegionColumn::From:
      return QString::number(row.region.from);
    case RegionColumn::To:
      return QString::number(row.region.to);
    case RegionColumn::Description:
      return QString::fromStdString(row.description);
    case RegionColumn::Size:
      return FromView(SizeName(row.size));
    case RegionColumn::Format:
      return FromView(FormatName(row.format));
    case RegionColumn::Values:
      return QString::fromStdString(row.values);
  }
  return {};
}

QVariant RegionModel::Code(const RegionRow& row, RegionColumn column) const {
  if (column == RegionColumn::Size) return static_cast<int>(row.size);
  if (column == RegionColumn::Format) return static_cast<int>(row.format);
  return {};
}

QVariant RegionModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role == Qt::TextAlignmentRole && orientation == Qt::Horizontal) {
    const bool isRight = IsNumber(static_cast<RegionColumn>(section));
    return QVariant::fromValue((isRight ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  return kHeadings[static_cast<std::size_t>(section)];
}

Qt::ItemFlags RegionModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const auto column = static_cast<RegionColumn>(index.column());
  const bool isChosen =
      column == RegionColumn::Description || column == RegionColumn::Size || column == RegionColumn::Format;
  const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  return isChosen ? flags | Qt::ItemIsEditable : flags;
}

bool RegionModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::EditRole) return false;
  const auto row = static_cast<std::size_t>(index.row());
  switch (static_cast<RegionColumn>(index.column())) {
    case RegionColumn::Description:
      return mView.SetDescription(row, value.toString().toStdString());
    case RegionColumn::Size:
      return mView.SetSize(row, static_cast<SizeCode>(value.toInt()));
    case RegionColumn::Format:
      return mView.SetFormat(row, static_cast<FormatCode>(value.toInt()));
    default:
      return false;
  }
}

}  // namespace kv::mdlDataTypesView
