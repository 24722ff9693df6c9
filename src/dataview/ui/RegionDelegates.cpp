#include "dataview/ui/RegionDelegates.h"

#include <QComboBox>
#include <QPainter>
#include <algorithm>

#include "dataview/operands/OperandCatalogue.h"
#include "dataview/ui/GridColours.h"
#include "dataview/ui/RegionModel.h"
#include "desktop/ui/Commands.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kMargin = 4;
constexpr int kBar = 3;            // width of the bar of a change
constexpr double kJustNow = 0.45;  // how much of its colour lies over a change that has just been

template <typename Codes, typename Name>
void Fill(QComboBox& list, const Codes& codes, Name name) {
  for (const auto code : codes) {
    const std::string_view text = name(code);
    list.addItem(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), static_cast<int>(code));
  }
}

}  // namespace

QWidget* ChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const {
  auto* list = new QComboBox(parent);
  const RegionRow& row = mModel.RowAt(index.row());
  const bool isSize = index.column() == static_cast<int>(RegionColumn::Size);
  list->setObjectName(isSize ? "cboSize" : "cboFormat");
  list->setAccessibleName(isSize ? "Size" : "Format");
  if (isSize) {
    Fill(*list, SizesOffered(row.region.type), SizeName);
  } else {
    Fill(*list, FormatsOffered(row.size), FormatName);
  }
  const auto choose = [self = const_cast<ChoiceDelegate*>(this), list] {
    emit self->commitData(list);
    emit self->closeEditor(list);
  };
  connect(list, &QComboBox::activated, list, choose);
  QMetaObject::invokeMethod(list, &QComboBox::showPopup, Qt::QueuedConnection);
  return list;
}

void ChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* list = static_cast<QComboBox*>(editor);
  list->setCurrentIndex(list->findData(index.data(RegionModel::kCodeRole)));
}

void ChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  const QVariant chosen = static_cast<QComboBox*>(editor)->currentData();
  if (chosen.isValid() && chosen != index.data(RegionModel::kCodeRole)) model->setData(index, chosen, Qt::EditRole);
}

void RegionValuesDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
  const GridColours colours = ColoursFor(option.palette);
  const bool isSelected = option.state.testFlag(QStyle::State_Selected);
  if (isSelected) painter->fillRect(option.rect, colours.selection);
  if (const double mark = mModel.MarkOf(index.row()); mark > 0) {
    if (!isSelected)
      painter->fillRect(option.rect, Blend(option.palette.color(QPalette::Base), colours.change, kJustNow * mark));
    const int height = std::max(1, static_cast<int>(option.rect.height() * mark));
    painter->fillRect(option.rect.left(), option.rect.bottom() + 1 - height, kBar, height, colours.change);
  }
  const QColor text = isSelected ? option.palette.color(QPalette::HighlightedText) : colours.text;
  QRect place = option.rect.adjusted(kMargin, 0, -kMargin, 0);

  const QString age = mModel.AgeOf(index.row());
  if (!age.isEmpty()) {
    painter->setFont(option.font);
    painter->setPen(isSelected ? text : colours.faint);
    painter->drawText(place, Qt::AlignRight | Qt::AlignVCenter, age);
    place.setRight(place.right() - QFontMetrics(option.font).horizontalAdvance(age) - 2 * kMargin);
  }
  QFont font = FixedFont(option.font);
  font.setItalic(mModel.HasEdited(index.row()));  // as in the grid above
  painter->setFont(font);
  painter->setPen(!isSelected && mModel.HasOld(index.row()) ? colours.faint : text);
  const QString values = QString::fromStdString(mModel.RowAt(index.row()).values);
  painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                    QFontMetrics(font).elidedText(values, Qt::ElideRight, std::max(0, place.width())));
}

}  // namespace kv::mdlDataTypesView
