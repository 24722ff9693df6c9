#include "dataview/files/GridText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <utility>

#include "base/LineReader.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "base/Time.h"
#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr std::string_view kRegionsFormat = "TELEPANEL-REGIONS 1";
constexpr std::string_view kOperandsFormat = "TELEPANEL-OPERANDS 1";

// The first word of each line behind the format.
constexpr std::string_view kSession = "session";
constexpr std::string_view kModel = "model";
constexpr std::string_view kWidths = "widths";
constexpr std::string_view kRegion = "region";
constexpr std::string_view kFileValues = "filevalues";
constexpr std::string_view kCursor = "cursor";
constexpr std::string_view kWidth = "width";
constexpr std::string_view kHidden = "hidden";
constexpr std::string_view kRead = "read";
constexpr std::string_view kEdited = "edited";

constexpr std::int32_t kWidestColumn = 10000;

// ---- writing ----

// Keeps a text within its line and its cell.
void AppendEscaped(std::string& out, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '\\':
        out += "\\\\";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\n':
        out += "\\n";
        break;
      default:
        out += c;
    }
  }
}

void AppendNumbers(std::string& out, std::span<const std::int32_t> numbers) {
  for (const std::int32_t number : numbers) out.append(" ").append(std::to_string(number));
}

void AppendNumberLine(std::string& out, std::string_view word, std::span<const std::int32_t> numbers) {
  out += word;
  AppendNumbers(out, numbers);
  out += '\n';
}

void AppendTextLine(std::string& out, std::string_view word, std::string_view text) {
  out.append(word).append(" ");
  AppendEscaped(out, text);
  out += '\n';
}

std::string Begin(std::string_view format, std::string_view session, std::string_view model) {
  std::string out;
  out.append(format).append("\n");
  AppendTextLine(out, kSession, session);
  AppendTextLine(out, kModel, model);
  return out;
}

void AppendRegion(std::string& out, const RegionRow& row) {
  const std::array numbers{static_cast<std::int32_t>(row.region.type), row.region.from, row.region.to,
                           static_cast<std::int32_t>(row.size), static_cast<std::int32_t>(row.format)};
  out += kRegion;
  AppendNumbers(out, numbers);
  out += ' ';
  AppendEscaped(out, row.description);
  out += '\n';
  if (row.isFromFile) AppendTextLine(out, kFileValues, row.values);
}

// The texts of a type, a line for each run of cells that came into the grid in the same way.
void AppendCells(std::string& out, const OperandStore& store, OperandTypeCode type) {
  CellOrigin run = CellOrigin::None;
  for (std::int32_t address = 0; address < store.CountOf(type); ++address) {
    const std::string& text = store.Text(type, address);
    const CellOrigin origin = text.empty() ? CellOrigin::None : store.Origin(type, address);
    if (origin != run && run != CellOrigin::None) out += '\n';
    if (origin != run && origin != CellOrigin::None) {
      out += origin == CellOrigin::Read ? kRead : kEdited;
      AppendNumbers(out, std::array{static_cast<std::int32_t>(type), address});
    }
    if (origin != CellOrigin::None) {
      out += '\t';
      AppendEscaped(out, text);
    }
    run = origin;
  }
  if (run != CellOrigin::None) out += '\n';
}

std::vector<std::int32_t> NumbersOf(const HiddenRows& hidden) {
  std::vector<std::int32_t> rows;
  for (std::int32_t row = 1; row <= kOperandTypeCount; ++row) {
    if (hidden.IsHidden(row)) rows.push_back(row);
  }
  return rows;
}

// ---- reading ----

std::optional<std::string> Unescaped(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    constexpr std::string_view kEscapes = "\\trn";
    const std::size_t which = ++i < text.size() ? kEscapes.find(text[i]) : std::string_view::npos;
    if (which == std::string_view::npos) return std::nullopt;
    plain += "\\\t\r\n"[which];
  }
  return plain;
}

// Takes so many numbers off the front of `rest`, each followed by a blank or by the end.
template <std::size_t count>
std::optional<std::array<std::int32_t, count>> TakeNumbers(std::string_view& rest) {
  std::array<std::int32_t, count> numbers;
  for (std::int32_t& number : numbers) {
    const auto parsed = ParseInteger(TakeField(rest, ' '));
    if (!parsed || !std::in_range<std::int32_t>(*parsed)) return std::nullopt;
    number = static_cast<std::int32_t>(*parsed);
  }
  return numbers;
}

std::optional<std::vector<std::int32_t>> AllNumbers(std::string_view rest, std::size_t most) {
  std::vector<std::int32_t> numbers;
  while (!rest.empty()) {
    const auto number = TakeNumbers<1>(rest);
    if (!number || numbers.size() == most) return std::nullopt;
    numbers.push_back((*number)[0]);
  }
  return numbers;
}

bool IsTypeCode(std::int32_t code) {
  return code >= 1 && code <= kOperandTypeCount;
}

// The lines of a file that is whole, without the check.
class GridLines {
 public:
  explicit GridLines(std::string_view text) : mLines(text) {}

  // The next line: its first word, and the rest behind the blank.
  bool Next() {
    if (!mLines.Next()) return false;
    mText = mLines.Line();
    mWord = TakeField(mText, ' ');
    return true;
  }
  [[nodiscard]] std::string_view Word() const { return mWord; }
  [[nodiscard]] std::string_view Text() const { return mText; }
  [[nodiscard]] std::unexpected<LineError> Expected(std::string_view what) const { return mLines.Expected(what); }

 private:
  LineReader mLines;
  std::string_view mWord;
  std::string_view mText;
};

std::expected<std::string_view, LineError> WithoutCheckLine(std::string_view bytes) {
  const std::string_view lines = bytes.substr(0, bytes.size() - (bytes.ends_with('\n') ? 1 : 0));
  const std::size_t last = lines.rfind('\n') + 1;  // 0 when there is one line
  const bool isWhole = lines.size() < bytes.size() && IsCheckLine(lines.substr(last), bytes.substr(0, last));
  if (isWhole) return bytes.substr(0, last);
  return std::unexpected(LineError{static_cast<std::size_t>(std::ranges::count(bytes, '\n')),
                                   "expected the check of all lines before: the file is damaged or was cut off"});
}

std::expected<std::string, LineError> TakeText(GridLines& lines, std::string_view word) {
  if (!lines.Next() || lines.Word() != word) return lines.Expected("a line \"" + std::string(word) + " ...\"");
  auto text = Unescaped(lines.Text());
  if (!text) return lines.Expected("a text");
  return *std::move(text);
}

std::expected<GridOwner, LineError> TakeOwner(GridLines& lines) {
  auto session = TakeText(lines, kSession);
  if (!session) return std::unexpected(session.error());
  auto model = TakeText(lines, kModel);
  if (!model) return std::unexpected(model.error());
  return GridOwner{*std::move(session), *std::move(model)};
}

// The lines behind the first one, which must be `format`.
std::expected<GridLines, LineError> Open(std::string_view bytes, std::string_view format) {
  const auto checked = WithoutCheckLine(bytes);
  if (!checked) return std::unexpected(checked.error());
  GridLines lines(*checked);
  if (!checked->starts_with(format) || !checked->substr(format.size()).starts_with('\n')) {
    return std::unexpected(LineError{1, "expected \"" + std::string(format) + "\""});
  }
  lines.Next();
  return lines;
}

// Takes the regions of a file that the model has and that overlap with none before.
class RegionsOfModel {
 public:
  explicit RegionsOfModel(std::string_view model) : mModel(model) {}

  bool Take(const Region& region) {
    mTookLast = IsOfModel(region) && mTaken.Add(region);
    return mTookLast;
  }
  [[nodiscard]] bool TookLast() const { return mTookLast; }

 private:
  [[nodiscard]] bool IsOfModel(const Region& region) const {
    return OperandCount(region.type, mModel) > 0 && region.from >= 0 && FitsOneRequest(region) &&
           !IsPastOperandCount(region, mModel);
  }

  std::string_view mModel;
  DisjointRegions mTaken;
  bool mTookLast = false;
};

// Nothing for a line that is no region. A view that is not offered for the type becomes that of a new row.
std::optional<RegionRow> ParseRegion(std::string_view text) {
  const auto numbers = TakeNumbers<5>(text);
  if (!numbers || !IsTypeCode((*numbers)[0])) return std::nullopt;
  const auto [type, from, to, size, format] = *numbers;
  auto description = Unescaped(text);
  if (!description) return std::nullopt;
  RegionRow row = NewRegionRow({from, to, OperandTypeCode{type}});
  row.description = *std::move(description);
  const auto sizes = SizesOffered(row.region.type);
  if (std::ranges::find(sizes, SizeCode{size}) != sizes.end()) row.size = SizeCode{size};
  const auto formats = FormatsOffered(row.size);
  if (std::ranges::find(formats, FormatCode{format}) != formats.end()) row.format = FormatCode{format};
  return row;
}

std::expected<void, LineError> TakeRegionsLine(const GridLines& lines, RegionsOfModel& taken, RegionsGrid& grid) {
  if (lines.Word() == kWidths) {
    auto widths = AllNumbers(lines.Text(), kRegionColumnCount);
    const auto isWidth = [](std::int32_t width) { return width >= 0 && width <= kWidestColumn; };
    if (!widths || !std::ranges::all_of(*widths, isWidth)) return lines.Expected("the widths of up to 8 columns");
    grid.columnWidths = *std::move(widths);
    return {};
  }
  if (lines.Word() == kFileValues) {
    auto values = Unescaped(lines.Text());
    if (!values || values->empty()) return lines.Expected("the values of a region");
    if (!taken.TookLast()) return {};
    grid.rows.back().values = *std::move(values);
    grid.rows.back().isFromFile = true;
    return {};
  }
  if (lines.Word() != kRegion) return lines.Expected("a line of the regions table");
  auto row = ParseRegion(lines.Text());
  if (!row) return lines.Expected("type, first and last address, size, format and description of a region");
  if (taken.Take(row->region)) {
    grid.rows.push_back(*std::move(row));
  } else {
    ++grid.leftOut;
  }
  return {};
}

// The texts of a line "type from TAB text TAB text ...", as far as the model has such operands.
std::expected<void, LineError> TakeCells(const GridLines& lines, OperandsGrid& grid) {
  std::string_view texts = lines.Text();
  std::string_view place = TakeField(texts, '\t');
  const auto numbers = TakeNumbers<2>(place);
  if (!numbers || !place.empty() || !IsTypeCode((*numbers)[0]) || (*numbers)[1] < 0 || texts.empty()) {
    return lines.Expected("an operand type, an address and the texts from there on");
  }
  const OperandTypeCode type{(*numbers)[0]};
  const std::int64_t from = (*numbers)[1];
  for (std::int64_t address = from; !texts.empty(); ++address) {
    const auto text = Unescaped(TakeField(texts, '\t'));
    if (!text || text->empty()) return lines.Expected("texts separated by tabs");
    if (address >= grid.operands.CountOf(type)) {
      ++grid.leftOut;
    } else if (const auto cell = static_cast<std::int32_t>(address); lines.Word() == kEdited) {
      grid.operands.Edit(type, cell, *text);
    } else {
      grid.operands.SetRead({cell, cell, type}, std::span(&*text, 1), Instant::min());
    }
  }
  return {};
}

std::expected<void, LineError> TakeOperandsLine(const GridLines& lines, OperandsGrid& grid) {
  if (lines.Word() == kRead || lines.Word() == kEdited) return TakeCells(lines, grid);
  const auto numbers = AllNumbers(lines.Text(), kOperandTypeCount);
  if (!numbers) return lines.Expected("numbers");
  if (lines.Word() == kHidden) {
    for (const std::int32_t row : *numbers) grid.settings.hidden.Set(row, true);
  } else if (lines.Word() == kWidth && numbers->size() == 1) {
    grid.settings.operandColumnWidth = std::clamp(numbers->front(), 0, kWidestColumn);
  } else if (lines.Word() == kCursor && numbers->size() == 2) {
    grid.settings.currentRow = std::clamp(numbers->front(), 1, kOperandTypeCount);
    grid.settings.currentColumn = std::clamp(numbers->back(), 1, grid.operands.WidestCount());
  } else {
    return lines.Expected("a line of the operand grid");
  }
  return {};
}

}  // namespace

std::string PrintRegionsGrid(const GridState& state, std::string_view session) {
  std::string out = Begin(kRegionsFormat, session, state.operands.Model());
  AppendNumberLine(out, kWidths, state.settings.regionColumnWidths);
  for (const RegionRow& row : state.regions.Rows()) AppendRegion(out, row);
  return WithCheckLine(std::move(out));
}

std::string PrintOperandsGrid(const GridState& state, std::string_view session) {
  const GridSettings& settings = state.settings;
  std::string out = Begin(kOperandsFormat, session, state.operands.Model());
  AppendNumberLine(out, kCursor, std::array{settings.currentRow, settings.currentColumn});
  AppendNumberLine(out, kWidth, std::array{settings.operandColumnWidth});
  AppendNumberLine(out, kHidden, NumbersOf(settings.hidden));
  for (std::int32_t row = 1; row <= kOperandTypeCount; ++row) AppendCells(out, state.operands, TypeOfRow(row));
  return WithCheckLine(std::move(out));
}

std::expected<RegionsGrid, LineError> ParseRegionsGrid(std::string_view bytes, std::string_view model) {
  auto lines = Open(bytes, kRegionsFormat);
  if (!lines) return std::unexpected(lines.error());
  auto owner = TakeOwner(*lines);
  if (!owner) return std::unexpected(owner.error());
  RegionsGrid grid{.owner = *std::move(owner), .rows = {}, .columnWidths = {}, .leftOut = 0};
  RegionsOfModel taken(model);
  while (lines->Next()) {
    if (const auto line = TakeRegionsLine(*lines, taken, grid); !line) return std::unexpected(line.error());
  }
  return grid;
}

std::expected<OperandsGrid, LineError> ParseOperandsGrid(std::string_view bytes, std::string_view model) {
  auto lines = Open(bytes, kOperandsFormat);
  if (!lines) return std::unexpected(lines.error());
  auto owner = TakeOwner(*lines);
  if (!owner) return std::unexpected(owner.error());
  OperandsGrid grid{.owner = *std::move(owner), .operands = OperandStore(model), .settings = {}, .leftOut = 0};
  while (lines->Next()) {
    if (const auto line = TakeOperandsLine(*lines, grid); !line) return std::unexpected(line.error());
  }
  return grid;
}

std::expected<GridOwner, LineError> OwnerOfGrid(std::string_view bytes) {
  auto lines = Open(bytes, bytes.starts_with(kRegionsFormat) ? kRegionsFormat : kOperandsFormat);
  if (!lines) return std::unexpected(lines.error());
  return TakeOwner(*lines);
}

}  // namespace kv::mdlDataTypesView
