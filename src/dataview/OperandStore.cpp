#include "dataview/OperandStore.h"

#include <algorithm>

#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

const std::string kNoText;

bool IsType(OperandTypeCode type) {
  const auto code = static_cast<std::int32_t>(type);
  return code >= 1 && code <= kOperandTypeCount;
}

std::size_t IndexOf(OperandTypeCode type) {
  return static_cast<std::size_t>(type) - 1;
}

}  // namespace

OperandStore::OperandStore(std::string_view model) : mModel(model) {
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const auto type = static_cast<OperandTypeCode>(code);
    mCounts[IndexOf(type)] = OperandCount(type, model);
  }
}

std::int32_t OperandStore::CountOf(OperandTypeCode type) const {
  return IsType(type) ? mCounts[IndexOf(type)] : 0;
}

std::int32_t OperandStore::WidestCount() const {
  return *std::ranges::max_element(mCounts);
}

bool OperandStore::IsCell(OperandTypeCode type, std::int32_t address) const {
  return address >= 0 && address < CountOf(type);
}

const std::string& OperandStore::Text(OperandTypeCode type, std::int32_t address) const {
  const Cell* cell = Find(type, address);
  return cell != nullptr ? cell->text : kNoText;
}

CellOrigin OperandStore::Origin(OperandTypeCode type, std::int32_t address) const {
  const Cell* cell = Find(type, address);
  return cell != nullptr ? cell->origin : CellOrigin::None;
}

CellText OperandStore::Shown(OperandTypeCode type, std::int32_t address) const {
  const Cell* cell = Find(type, address);
  return cell != nullptr ? CellText{cell->text, cell->origin} : CellText();
}

Instant OperandStore::ChangedAt(OperandTypeCode type, std::int32_t address) const {
  const Cell* cell = Find(type, address);
  return cell != nullptr ? cell->changedAt : Instant::min();
}

Instant OperandStore::ReadAt(OperandTypeCode type, std::int32_t address) const {
  const Cell* cell = Find(type, address);
  return cell != nullptr ? cell->readAt : Instant::min();
}

const std::string& OperandStore::LastTold(OperandTypeCode type, std::int32_t address) const {
  static const std::string kNothing;
  const Cell* cell = Find(type, address);
  if (cell == nullptr || cell->readAt == Instant::min()) return kNothing;  // kept from an earlier opening
  return cell->origin == CellOrigin::Edited ? cell->readText : cell->text;
}

bool OperandStore::IsKept(OperandTypeCode type, std::int32_t address) const {
  return Origin(type, address) == CellOrigin::Read && ReadAt(type, address) == Instant::min();
}

bool OperandStore::IsOld(OperandTypeCode type, std::int32_t address) const {
  return Origin(type, address) == CellOrigin::Read && ReadAt(type, address) <= mLostAt;
}

std::optional<Instant> OperandStore::OldestReadAt(const Region& region) const {
  Instant oldest = Instant::max();
  for (std::int32_t address = region.from; address <= region.to; ++address) {
    oldest = std::min(oldest, ReadAt(region.type, address));
  }
  return oldest == Instant::min() || oldest == Instant::max() ? std::nullopt : std::optional(oldest);
}

std::vector<std::string> OperandStore::Texts(const Region& region) const {
  std::vector<std::string> texts;
  if (region.Count() < 1) return texts;
  texts.reserve(static_cast<std::size_t>(region.Count()));
  for (std::int64_t address = region.from; address <= region.to; ++address) {
    texts.push_back(Text(region.type, static_cast<std::int32_t>(address)));
  }
  return texts;
}

bool OperandStore::Edit(OperandTypeCode type, std::int32_t address, std::string_view text) {
  Cell* cell = Touch(type, address);
  if (cell == nullptr) return false;
  EditCell(*cell, text);
  return true;
}

Region OperandStore::SetRead(const Region& region, std::span<const std::string> texts, Instant now) {
  Region changed{.from = region.to, .to = region.to - 1, .type = region.type};
  const std::int64_t behind = std::min({region.from + static_cast<std::int64_t>(texts.size()),
                                        std::int64_t{region.to} + 1, std::int64_t{CountOf(region.type)}});
  Cell* const cells = Touch(region.type, 0);
  for (std::int32_t address = std::max(region.from, 0); cells != nullptr && address < behind; ++address) {
    Cell& cell = cells[address];
    const std::string& text = texts[static_cast<std::size_t>(address - region.from)];
    if (cell.origin == CellOrigin::Read && cell.text == text) {  // on line nearly all
      cell.readAt = now;
      continue;
    }
    TakeRead(cell, text, now);
    if (changed.from > changed.to) changed.from = address;
    changed.to = address;
  }
  return changed;
}

void OperandStore::SetWritten(const Region& region, Instant now) {
  for (std::int64_t address = region.from; address <= region.to; ++address) {
    Cell* cell = Touch(region.type, static_cast<std::int32_t>(address));
    if (cell == nullptr || cell->origin == CellOrigin::None) continue;
    Mark(*cell, CellOrigin::Read);
    cell->readText.clear();
    cell->readAt = now;
  }
}

bool OperandStore::Restore(OperandTypeCode type, std::int32_t address, const CellText& from, const CellText& to) {
  Cell* cell = Touch(type, address);
  if (cell == nullptr) return false;
  switch (to.origin) {
    case CellOrigin::Edited:
      EditCell(*cell, to.text);
      return true;
    case CellOrigin::Read:
      return GoBackToRead(*cell, from, to.text);
    case CellOrigin::None:
      return GoBackToNone(*cell, from);
  }
  return false;
}

void OperandStore::Clear() {
  for (std::vector<Cell>& row : mRows) row.clear();
  mEditedCount = 0;
}

const OperandStore::Cell* OperandStore::Find(OperandTypeCode type, std::int32_t address) const {
  if (!IsCell(type, address)) return nullptr;
  const std::vector<Cell>& row = mRows[IndexOf(type)];
  return row.empty() ? nullptr : &row[static_cast<std::size_t>(address)];
}

OperandStore::Cell* OperandStore::Touch(OperandTypeCode type, std::int32_t address) {
  if (!IsCell(type, address)) return nullptr;
  std::vector<Cell>& row = mRows[IndexOf(type)];
  if (row.empty()) row.resize(static_cast<std::size_t>(CountOf(type)));
  return &row[static_cast<std::size_t>(address)];
}

void OperandStore::Mark(Cell& cell, CellOrigin origin) {
  mEditedCount -= cell.origin == CellOrigin::Edited ? 1U : 0U;
  mEditedCount += origin == CellOrigin::Edited ? 1U : 0U;
  cell.origin = origin;
}

void OperandStore::EditCell(Cell& cell, std::string_view text) {
  if (text.empty()) return Empty(cell);
  if (cell.origin == CellOrigin::Read) cell.readText = std::move(cell.text);
  cell.text = text;
  Mark(cell, CellOrigin::Edited);
}

void OperandStore::Empty(Cell& cell) {
  Mark(cell, CellOrigin::None);
  cell = Cell();
}

// Another text or another origin than it has.
void OperandStore::TakeRead(Cell& cell, const std::string& text, Instant now) {
  const std::string& before = cell.origin == CellOrigin::Edited ? cell.readText : cell.text;
  // The first read of an operand is no change of its value.
  if (text != before && cell.readAt != Instant::min()) cell.changedAt = now;
  cell.readAt = now;
  cell.text = text;
  cell.readText.clear();
  Mark(cell, CellOrigin::Read);
}

bool OperandStore::GoBackToRead(Cell& cell, const CellText& from, const std::string& text) {
  if (cell.origin == CellOrigin::Read) {
    // What the user typed has been written since: his old text is now one to be written.
    const bool isWritten = from.origin == CellOrigin::Edited && cell.text == from.text && cell.text != text;
    if (isWritten) EditCell(cell, text);
    return isWritten;
  }
  const bool hasRead = cell.origin == CellOrigin::Edited && cell.readAt != Instant::min();
  cell.text = hasRead ? std::move(cell.readText) : text;
  cell.readText.clear();
  Mark(cell, CellOrigin::Read);
  return true;
}

bool OperandStore::GoBackToNone(Cell& cell, const CellText& from) {
  switch (cell.origin) {
    case CellOrigin::None:
      return false;
    case CellOrigin::Edited:
      if (cell.readAt != Instant::min()) return GoBackToRead(cell, from, {});
      break;
    case CellOrigin::Read:
      // Told by the controller after the change that is undone: it stays.
      if (from.origin != CellOrigin::Read || cell.text != from.text) return false;
      break;
  }
  Empty(cell);
  return true;
}

}  // namespace kv::mdlDataTypesView
