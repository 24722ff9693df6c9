#include "simulator/Operands.h"

#include <algorithm>

#include "simulator/TimerWord.h"

namespace sim {
namespace {

// The one system bit that a request may write: it forces inputs, and an O/S replacement puts it back.
constexpr std::uint32_t kWritableSystemBit = 501;

bool IsWritable(const OperandTypeRow& type, std::uint32_t start, std::uint32_t count) {
  if (type.areas[0] == Area::SB) return start == kWritableSystemBit && count == 1;
  return type.writable;
}

}  // namespace

Operands::Operands(const Model& model) : mModel(model) {
  for (const AreaRow& row : AllAreas()) {
    mCells[static_cast<std::size_t>(row.area)].resize(CellCount(row.area, model.operands, false));
  }
}

Result<std::span<const std::uint32_t>> Operands::Read(const OperandTypeRow& type, std::uint32_t start,
                                                      std::uint32_t count, std::vector<std::uint32_t>& gathered) const {
  if (const auto place = CheckPlace(type, start, count); !place) return Refuse(place.error());
  const std::size_t fields = type.fields;
  if (fields == 1 && !type.asTimerWord) return Cells(type.areas[0]).subspan(start, count);
  gathered.resize(count * fields);
  for (std::size_t field = 0; field < fields; ++field) {
    const auto cells = Cells(type.areas[field]).subspan(start, count);
    for (std::size_t i = 0; i < count; ++i) gathered[i * fields + field] = cells[i];
  }
  if (type.asTimerWord) std::ranges::transform(gathered, gathered.begin(), NearestTimerWord);
  return gathered;
}

Result<void> Operands::CheckWrite(const OperandTypeRow& type, std::uint32_t start, std::uint32_t count) const {
  if (const auto place = CheckPlace(type, start, count); !place) return place;
  if (!IsWritable(type, start, count)) return Refuse(Refusal::ReadOnly);
  return {};
}

Result<void> Operands::Write(const OperandTypeRow& type, std::uint32_t start, std::span<const std::uint32_t> values) {
  const auto allowed = CheckWrite(type, start, static_cast<std::uint32_t>(values.size()));
  if (!allowed) return allowed;
  if (!std::ranges::all_of(values, [&](std::uint32_t value) { return CanHold(type, value); })) {
    return Refuse(Refusal::BadValue);
  }
  std::ranges::copy(values, mCells[static_cast<std::size_t>(type.areas[0])].begin() + start);
  return {};
}

void Operands::SetCell(Area area, std::size_t index, std::uint32_t value) {
  auto& cells = mCells[static_cast<std::size_t>(area)];
  if (index < cells.size()) cells[index] = value;
}

void Operands::Clear() {
  for (auto& cells : mCells) std::ranges::fill(cells, 0);
}

std::span<const std::uint32_t> Operands::Cells(Area area) const {
  return mCells[static_cast<std::size_t>(area)];
}

Result<void> Operands::CheckPlace(const OperandTypeRow& type, std::uint32_t start, std::uint32_t count) const {
  const std::size_t cells = CellCount(type.areas[0], mModel.operands, mOlderOs);
  const bool isMissing = cells == 0 || (type.asTimerWord && mModel.family != Family::Compact);
  if (isMissing) return Refuse(Refusal::UnknownOperandType);
  if (count == 0 || count > type.most || start >= cells || count > cells - start) return Refuse(Refusal::PastTheEnd);
  return {};
}

bool Operands::CanHold(const OperandTypeRow& type, std::uint32_t value) const {
  const Area area = type.areas[0];
  if (value > RowOf(area).greatest) return false;
  const bool isTime = area == Area::TimerPreset || area == Area::TimerCurrent;
  return !isTime || mModel.family != Family::Compact || ExactTimerWord(value).has_value();
}

}  // namespace sim
