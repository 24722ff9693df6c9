#include "dataview/files/RegionFile.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "base/AnsiText.h"
#include "base/LineReader.h"
#include "base/Numbers.h"
#include "base/Texts.h"
#include "dataview/operands/OperandCatalogue.h"
#include "models/ModelCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

using Kind = RegionFileFault::Kind;
using Rows = std::vector<RegionRow>;

constexpr std::string_view kVersionLine = "Version 100";
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kFileEnd = "\r\n\r\n";
constexpr std::size_t kFirstRowLine = 3;
constexpr std::size_t kNeededCells = 4;  // up to the last address; what is missing behind it is as in a new row

std::string_view FamilyWord(std::string_view model) {
  return IsCompactModel(model) ? "Q50" : "Aurex";
}

std::unexpected<RegionFileFault> Fault(Kind kind, std::size_t line, const std::string& what) {
  return std::unexpected(RegionFileFault{kind, LineError{line, what}.Text()});
}

// ---- writing ----

std::array<std::string, kRegionColumnCount> CellsOf(const RegionRow& row) {
  return {std::to_string(static_cast<std::int32_t>(row.region.type)),
          std::string(TypeName(row.region.type)),
          std::to_string(row.region.from),
          std::to_string(row.region.to),
          row.description,
          std::string(SizeName(row.size)),
          std::string(FormatName(row.format)),
          row.values};
}

std::string OneLine(std::string text) {
  std::ranges::replace_if(text, [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
  return text;
}

// ---- reading ----

// A number that does not fit is one that no model has.
std::optional<std::int32_t> ParseNumber(std::string_view cell) {
  const auto number = ParseInteger(cell);
  if (!number) return std::nullopt;
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(*number, Limits::min(), Limits::max()));
}

// The code that a cell means, written as its number or its name, when it is among those offered.
template <typename Code, typename NameOf>
std::optional<Code> OfferedCode(std::string_view cell, std::span<const Code> offered, NameOf nameOf) {
  for (const Code code : offered) {
    if (cell == nameOf(code) || cell == std::to_string(static_cast<std::int32_t>(code))) return code;
  }
  return std::nullopt;
}

// A row of the table from its line; none when that is no row at all.
std::optional<RegionRow> ParseRow(std::string_view line) {
  std::array<std::string_view, kRegionColumnCount> cells;
  std::size_t count = 0;
  while (!line.empty() && count < cells.size()) cells[count++] = TakeField(line, '\t');
  if (count < kNeededCells) return std::nullopt;

  const auto at = [&cells](RegionColumn column) { return cells[static_cast<std::size_t>(column)]; };
  const auto type = ParseNumber(at(RegionColumn::Type));
  const auto from = ParseNumber(at(RegionColumn::From));
  const auto to = ParseNumber(at(RegionColumn::To));
  if (!type || !from || !to) return std::nullopt;

  RegionRow row = NewRegionRow({*from, *to, static_cast<OperandTypeCode>(*type)});
  row.description = AnsiToUtf8(at(RegionColumn::Description));
  if (const auto size = OfferedCode(at(RegionColumn::Size), SizesOffered(row.region.type), SizeName)) row.size = *size;
  if (const auto format = OfferedCode(at(RegionColumn::Format), FormatsOffered(row.size), FormatName)) {
    row.format = *format;
  }
  row.values = AnsiToUtf8(at(RegionColumn::Values));
  row.isFromFile = !row.values.empty();
  return row;
}

// Regions that do not overlap cannot be more.
std::size_t MostRegions(std::string_view model) {
  std::size_t most = 0;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    most += static_cast<std::size_t>(OperandCount(OperandTypeCode{code}, model)) + 1;  // one address too many passes
  }
  return most;
}

std::expected<Rows, RegionFileFault> ParseRows(LineReader& lines, std::string_view model) {
  const std::size_t most = MostRegions(model);
  Rows rows;
  while (lines.Next()) {
    if (rows.size() == most) {
      return Fault(Kind::InvalidRegions, lines.Number(), "more regions than the model has operands");
    }
    auto row = ParseRow(lines.Line());
    if (!row)
      return Fault(Kind::Format, lines.Number(), "expected the number of an operand type, its name, and two addresses");
    rows.push_back(*std::move(row));
  }
  return rows;
}

std::string WhyInvalid(const Region& region, std::string_view model) {
  const std::string name(TypeName(region.type));
  if (name.empty()) return "there is no operand type " + std::to_string(static_cast<std::int32_t>(region.type));
  if (OperandCount(region.type, model) == 0) return std::string(model) + " has no " + name + " operands";
  if (region.from < 0 || region.to < region.from) {
    return RegionText(region) + " is no range of addresses";
  }
  if (!IsPastOperandCount(region, model)) return {};
  return RegionText(region) + " ends behind the last " + name + " of " + std::string(model);
}

// The index of a row that begins within one before it in the order of addresses; none when no two overlap.
std::optional<std::size_t> FindOverlap(const Rows& rows) {
  std::vector<std::size_t> order(rows.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::ranges::sort(order, {}, [&rows](std::size_t i) { return std::pair(rows[i].region.type, rows[i].region.from); });
  const auto overlap = std::ranges::adjacent_find(order, [&rows](std::size_t first, std::size_t second) {
    return rows[first].region.Overlaps(rows[second].region);
  });
  return overlap == order.end() ? std::nullopt : std::optional(*std::next(overlap));
}

std::expected<void, RegionFileFault> CheckRegions(const Rows& rows, std::string_view model) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string why = WhyInvalid(rows[i].region, model);
    if (!why.empty()) return Fault(Kind::InvalidRegions, kFirstRowLine + i, why);
  }
  if (const auto overlap = FindOverlap(rows)) {
    return Fault(Kind::InvalidRegions, kFirstRowLine + *overlap, "the region overlaps with another one in the file");
  }
  return {};
}

// Rows that are too long for a request leave their places, and their pieces follow the others.
Rows Resplit(Rows rows) {
  const auto isLong = [](const RegionRow& row) { return !FitsOneRequest(row.region); };
  Rows fitting;
  std::ranges::remove_copy_if(rows, std::back_inserter(fitting), isLong);
  for (RegionRow& row : rows) {
    if (!isLong(row)) continue;
    row.values.clear();  // a piece has a part of them only
    row.isFromFile = false;
    for (const Region& piece : SplitRegion(row.region)) {
      row.region = piece;
      fitting.push_back(row);
    }
  }
  return fitting;
}

}  // namespace

std::string_view RegionFileFault::Message() const {
  return kind == Kind::Format ? kRegionFileRefusedMessage : kRegionFileInvalidRegionsMessage;
}

RegionFileText PrintRegionFile(std::span<const RegionRow> rows, std::string_view model) {
  RegionFileText file;
  file.bytes.append(kVersionLine).append(kLineEnd).append(FamilyWord(model)).append(kLineEnd);
  for (const RegionRow& row : rows) {
    for (const std::string& cell : CellsOf(row)) {
      const std::string ansi = Utf8ToAnsi(cell);
      file.charactersLost = file.charactersLost || AnsiToUtf8(ansi) != cell;
      file.bytes.append(OneLine(ansi)).append("\t");
    }
    file.bytes.append(kLineEnd);
  }
  file.bytes.append(kLineEnd);
  return file;
}

std::expected<Rows, RegionFileFault> ParseRegionFile(std::string_view bytes, std::string_view model) {
  // The empty line at the end is none of the regions.
  const std::size_t emptyLine = bytes.ends_with(kLineEnd) ? kLineEnd.size() : 0;
  LineReader lines(bytes.substr(0, bytes.size() - emptyLine), LineReader::End::CrLf);
  if (!lines.Next() || lines.Line() != kVersionLine) return Fault(Kind::Format, 1, "expected \"Version 100\"");
  if (!lines.Next() || lines.Line() != FamilyWord(model)) {
    return Fault(Kind::Format, 2, "expected \"" + std::string(FamilyWord(model)) + "\", for " + std::string(model));
  }
  // Looked at before the regions: a file that was cut must not pass as one with fewer of them.
  if (!bytes.ends_with(kFileEnd)) {
    return std::unexpected(RegionFileFault{Kind::Format, "the empty line at the end is missing: the file was cut off"});
  }
  auto rows = ParseRows(lines, model);
  if (!rows) return rows;
  if (const auto checked = CheckRegions(*rows, model); !checked) return std::unexpected(checked.error());
  return Resplit(*std::move(rows));
}

std::expected<bool, FileError> SaveRegionFile(const std::filesystem::path& file, std::span<const RegionRow> rows,
                                              std::string_view model) {
  const RegionFileText text = PrintRegionFile(rows, model);
  if (const auto saved = SaveAtomically(file, text.bytes); !saved) return std::unexpected(saved.error());
  return text.charactersLost;
}

std::expected<Rows, RegionFileFault> LoadRegionFile(const std::filesystem::path& file, std::string_view model) {
  const auto bytes = ReadWholeFile(file, kLargestRegionFile);
  if (!bytes) return std::unexpected(RegionFileFault{Kind::Format, bytes.error().Text()});
  return ParseRegionFile(*bytes, model);
}

}  // namespace kv::mdlDataTypesView
