#include "clone/ui/DumpList.h"

#include "base/AnsiText.h"

namespace kv {

namespace {

constexpr int kDroppedShare = 20;  // one in so many at once, so that the view is not told of each single one

QString FromText(const std::string& text) {
  return QString::fromStdString(AnsiToUtf8(text));
}

}  // namespace

void DumpList::ShowSegments(std::span<const CloneSegment> segments) {
  std::deque<std::string> codes;
  for (const CloneSegment& segment : segments) codes.push_back(segment.code);
  Reset("Segment Name", std::move(codes));
}

void DumpList::ShowLines(const char* heading, const std::vector<std::string>& lines) {
  std::deque<std::string> rows;
  for (const std::string& line : lines) rows.push_back(Utf8ToAnsi(line));
  Reset(heading, std::move(rows));
}

void DumpList::BeginCommands() {
  Reset("Write Command", {});
}

void DumpList::AddCommand(std::string_view line) {
  if (rowCount() >= mMostRows) {
    const int dropped = mMostRows / kDroppedShare;
    beginRemoveRows({}, 0, dropped - 1);
    mRows.erase(mRows.begin(), mRows.begin() + dropped);
    mDropped += dropped;
    endRemoveRows();
  }
  if (line.ends_with('\r')) line.remove_suffix(1);
  beginInsertRows({}, rowCount(), rowCount());
  mRows.emplace_back(line);
  endInsertRows();
}

void DumpList::Reset(const char* heading, std::deque<std::string> rows) {
  beginResetModel();
  mHeading = heading;
  mRows = std::move(rows);
  mDropped = 0;
  endResetModel();
}

int DumpList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mRows.size());
}

int DumpList::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 1;
}

QVariant DumpList::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || role != Qt::DisplayRole) return {};
  return FromText(mRows[static_cast<std::size_t>(index.row())]);
}

QVariant DumpList::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Horizontal) return QString(mHeading);
  return mDropped + section + 1;
}

}  // namespace kv
