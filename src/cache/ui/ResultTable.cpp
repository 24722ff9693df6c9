#include "cache/ui/ResultTable.h"

#include <QHeaderView>
#include <QImage>
#include <QPixmap>
#include <algorithm>

#include "cache/ResourcePicture.h"

namespace kv {
namespace {

enum Column { Shown, Name, Size, From, kColumns };
constexpr QSize kPicture(320, 64);  // at most
constexpr int kMargin = 4;
constexpr int kNameWidth = 18;  // of the columns, in characters
constexpr int kBytesWidth = 10;

// As many dots of the screen as the picture has, fewer where it is larger than its place.
QPixmap PixmapOf(const panel::Picture& picture, qreal scale) {
  const QImage image(reinterpret_cast<const uchar*>(picture.Dots().data()), picture.Width(), picture.Height(),
                     QImage::Format_ARGB32);
  const QSize size = picture.Width() > kPicture.width() || picture.Height() > kPicture.height()
                         ? image.size().scaled(kPicture, Qt::KeepAspectRatio)
                         : image.size();
  const bool isWhole = scale == static_cast<int>(scale) && size == image.size();
  QImage scaled = image.scaled((QSizeF(size) * scale).toSize().expandedTo({1, 1}), Qt::IgnoreAspectRatio,
                               isWhole ? Qt::FastTransformation : Qt::SmoothTransformation);
  scaled.setDevicePixelRatio(scale);
  return QPixmap::fromImage(scaled);
}

const cache::CachedResource* ResourceOf(const cache::CacheContent& content, const cache::CacheResult& result) {
  const auto& part = content.Part(result.step);
  if (!part) return nullptr;
  const auto found = std::ranges::find(*part, result.entry.id, [](const auto& one) { return one.entry.id; });
  return found == part->end() ? nullptr : &*found;
}

}  // namespace

ResultTable::ResultTable(QWidget* parent) : QTableWidget(0, kColumns, parent) {
  setObjectName("vsfResults");
  setAccessibleName("Fonts and images in the file");
  setToolTip("What is in the file: fonts as samples, images as they are, or smaller");
  setHorizontalHeaderLabels({"Font or Image", "Name", "Bytes", "Came from"});
  horizontalHeader()->setStretchLastSection(true);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  verticalHeader()->hide();
  setIconSize(kPicture);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setTabKeyNavigation(false);
  setWordWrap(false);
  const int letter = fontMetrics().averageCharWidth();
  setColumnWidth(Shown, kPicture.width() + 2 * kMargin);
  setColumnWidth(Name, kNameWidth * letter);
  setColumnWidth(Size, kBytesWidth * letter);
}

void ResultTable::Fill(const std::vector<cache::CacheResult>& results, const cache::CacheContent& content) {
  setRowCount(0);
  setRowCount(static_cast<int>(results.size()));
  for (int row = 0; row < rowCount(); ++row) {
    const cache::CacheResult& result = results[static_cast<std::size_t>(row)];
    FillRow(row, result, ResourceOf(content, result));
  }
  if (rowCount() > 0) setCurrentCell(0, Name);
}

void ResultTable::FillRow(int row, const cache::CacheResult& result, const cache::CachedResource* resource) {
  auto* shown = new QTableWidgetItem();
  const panel::Dot ink = palette().color(QPalette::Text).rgb() | panel::kOpaque;
  const auto picture = resource ? PictureOfResource(result.step, *resource, ink) : std::nullopt;
  if (picture) shown->setData(Qt::DecorationRole, PixmapOf(*picture, devicePixelRatioF()));
  if (!picture) shown->setText("Cannot be drawn");
  auto* bytes = new QTableWidgetItem(QString::number(result.entry.length));
  bytes->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  const QString from = result.wasRead ? "the controller" : "the file as it was";
  const QString fault = QString::fromStdString(result.fault);
  const QString name = QString::fromStdString(NameOfResource(result.step, result.entry));
  QTableWidgetItem* items[kColumns] = {shown, new QTableWidgetItem(name), bytes,
                                       new QTableWidgetItem(fault.isEmpty() ? from : from + "; " + fault)};
  for (int column = 0; column < kColumns; ++column) {
    items[column]->setToolTip(column == Shown ? name : items[column]->text());
    setItem(row, column, items[column]);
  }
  const int height = picture ? std::min(picture->Height(), kPicture.height()) : 0;
  setRowHeight(row, std::max(height, fontMetrics().height()) + 2 * kMargin);
}

}  // namespace kv
