#include "journal/ui/JournalTable.h"

#include <QApplication>
#include <array>

#include "desktop/ui/Commands.h"

namespace kv {
namespace {

constexpr std::array<const char*, JournalTable::kColumns> kHeadings{"Number",     "Time",      "User",
                                                                    "Controller", "Operation", "Result"};

// "K220-22-R1, 1292798829, Mixer": the details below name what is what.
std::string ShortController(const ControllerName& name) {
  std::string text = name.model;
  if (name.serialNumber) text += (text.empty() ? "" : ", ") + std::to_string(*name.serialNumber);
  if (!name.project.empty()) text += (text.empty() ? "" : ", ") + name.project;
  return text;
}

std::string TextOf(const JournalEntry& entry, int column) {
  const JournalRecord& record = entry.record;
  switch (column) {
    case JournalTable::Number:
      return std::to_string(record.number);
    case JournalTable::Time:
      return entry.Moment();
    case JournalTable::User:
      return record.user;
    case JournalTable::Controller:
      return ShortController(record.controller);
    case JournalTable::What:
      return (record.tool.empty() ? "" : record.tool + ": ") + entry.What();
    case JournalTable::Result:
      return entry.Result();
    default:
      return "";
  }
}

}  // namespace

void JournalTable::Show(std::vector<JournalEntry> entries) {
  beginResetModel();
  mEntries = std::move(entries);
  endResetModel();
}

const JournalEntry* JournalTable::EntryAt(int row) const {
  const auto count = static_cast<int>(mEntries.size());
  return row < 0 || row >= count ? nullptr : &mEntries[static_cast<std::size_t>(count - 1 - row)];
}

int JournalTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(mEntries.size());
}

int JournalTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumns;
}

QVariant JournalTable::data(const QModelIndex& index, int role) const {
  const JournalEntry* entry = index.isValid() ? EntryAt(index.row()) : nullptr;
  if (entry == nullptr) return {};
  if (role == Qt::TextAlignmentRole && index.column() == Number) return int{Qt::AlignRight | Qt::AlignVCenter};
  if (role == Qt::FontRole && index.column() == Number) return FixedFont(QApplication::font());
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  return QString::fromStdString(TextOf(*entry, index.column()));
}

QVariant JournalTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) return {};
  const auto side = section == Number ? Qt::AlignRight : Qt::AlignLeft;
  if (role == Qt::TextAlignmentRole) return static_cast<int>(side | Qt::AlignVCenter);
  return role == Qt::DisplayRole ? QVariant(kHeadings[static_cast<std::size_t>(section)]) : QVariant();
}

}  // namespace kv
