#include "dataview/ui/OperandModel.h"

#include <QApplication>
#include <QBrush>
#include <algorithm>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/ui/GridColours.h"

namespace kv::mdlDataTypesView {
namespace {

QString NameOf(OperandTypeCode type) {
  const std::string_view name = TypeName(type);
  return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

}  // namespace

OperandModel::OperandModel(DataTypesView& view) : mView(view), mColumns(view.Operands().WidestCount()) {}

void OperandModel::Follow(const GridChanges& changes) {
  if (mColumns != mView.Operands().WidestCount()) {
    beginResetModel();
    mColumns = mView.Operands().WidestCount();
    endResetModel();
    return;
  }
  GridSelection span = changes.operands;
  if (changes.operandsReplaced) span = {1, 1, kOperandTypeCount, mColumns};
  if (span.bottom < span.top || mColumns == 0) return;
  const auto column = [this](std::int32_t counted) { return std::clamp(counted - 1, 0, mColumns - 1); };
  emit dataChanged(index(span.top - 1, column(span.left)), index(span.bottom - 1, column(span.right)));
}

bool OperandModel::IsCell(const QModelIndex& index) const {
  return index.isValid() && mView.Operands().IsCell(TypeAt(index.row()), index.column());
}

int OperandModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kOperandTypeCount;
}

int OperandModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : mColumns;
}

QVariant OperandModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return QString::fromStdString(mView.Operands().Text(TypeAt(index.row()), index.column()));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
      return Describe(index);
    default:
      return {};
  }
}

// "MI 5: 120, edited and not written".
QString OperandModel::Describe(const QModelIndex& index) const {
  const OperandTypeCode type = TypeAt(index.row());
  const QString name = NameOf(type);
  const OperandStore& operands = mView.Operands();
  if (operands.CountOf(type) == 0) return QString("This model has no %1").arg(name);
  if (!IsCell(index)) return QString("%1 ends at address %2").arg(name).arg(operands.CountOf(type) - 1);
  const QString place = QString("%1 %2").arg(name).arg(index.column());
  const QString value = QString::fromStdString(operands.Text(type, index.column()));
  switch (operands.Origin(type, index.column())) {
    case CellOrigin::None:
      return place + ": not read";
    case CellOrigin::Read:
      return place + ": " + value + AgeOf(type, index.column());
    case CellOrigin::Edited:
      return place + ": " + value + ", edited and not written";
  }
  return place;
}

QString OperandModel::AgeOf(OperandTypeCode type, int address) const {
  if (mView.Operands().IsKept(type, address)) return ", kept from before; not read since";
  return mView.Operands().IsOld(type, address) ? ", read before the connection was lost" : "";
}

QVariant OperandModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical) return TypeHeader(section, role);
  if (role == Qt::DisplayRole) return section;
  if (role == Qt::TextAlignmentRole) return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  return {};
}

QVariant OperandModel::TypeHeader(int row, int role) const {
  const OperandTypeCode type = TypeAt(row);
  const std::int32_t count = mView.Operands().CountOf(type);
  const GridColours colours = ColoursFor(QApplication::palette());
  switch (role) {
    case Qt::DisplayRole:
      return NameOf(type);
    case Qt::BackgroundRole:
      return QBrush(count == 0 ? colours.unusable : colours.OfType(type));
    case Qt::ForegroundRole:
      return QBrush(count == 0 ? colours.faint : colours.text);
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    case Qt::ToolTipRole:
      if (count == 0) return QString("This model has no %1").arg(NameOf(type));
      return QString("%1 0 to %2, %3; a click selects all of them")
          .arg(NameOf(type))
          .arg(count - 1)
          .arg(IsWritableType(type) ? "can be written" : "can only be read");
    default:
      return {};
  }
}

Qt::ItemFlags OperandModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  // A selection may reach over cells that the model does not have; its commands leave them out.
  Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
  if (IsCell(index) && IsWritableType(TypeAt(index.row()))) flags |= Qt::ItemIsEditable;
  return flags;
}

bool OperandModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!IsCell(index) || role != Qt::EditRole) return false;
  return mView.Edit(TypeAt(index.row()), index.column(), value.toString().toStdString());
}

}  // namespace kv::mdlDataTypesView
