#include "dataview/files/ExportImport.h"

#include <optional>
#include <utility>

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "dataview/GridSelection.h"
#include "dataview/OperandCatalogue.h"
#include "dataview/files/Csv.h"
#include "dataview/files/OperandSheet.h"
#include "dataview/sheets/SheetFile.h"
#include "link/LinkTexts.h"

namespace kv::mdlDataTypesView {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kCsvExportRefused = "The CSV file you have selected cannot support the exported values.";
constexpr std::string_view kCsvImportRefused = "The CSV file you have selected cannot be imported.";
constexpr std::string_view kSheetExportRefused = "The Excel file you have selected cannot support the exported values.";
constexpr std::string_view kSheetImportRefused = "The Excel file you have selected cannot be imported.";

constexpr std::string_view kTemplate = "DataTypes_Tmp";

std::unexpected<TransferFault> Refused(std::string_view message, const FileError& error) {
  return std::unexpected(TransferFault{message, error.Text()});
}

std::unexpected<TransferFault> Refused(std::string_view message, const fs::path& file, std::string place,
                                       std::string what) {
  return Refused(message, FileError{Utf8FromPath(file), std::move(place), std::move(what)});
}

// Collects what an import changes.
class Changes {
 public:
  explicit Changes(const OperandStore& store) : mStore(store) {}

  // What is wrong with the place of the text; empty when it was taken.
  [[nodiscard]] std::string Put(OperandTypeCode type, std::int64_t address, std::string&& text) {
    if (address < 0 || address >= mStore.CountOf(type)) {
      return text.empty() ? std::string() : NoSuchOperand(type, address);
    }
    const auto cell = static_cast<std::int32_t>(address);
    if (mStore.Text(type, cell) != text) mCells.push_back({type, cell, std::move(text)});
    return {};
  }
  [[nodiscard]] std::vector<CellAssignment> Take() { return std::move(mCells); }

 private:
  [[nodiscard]] std::string NoSuchOperand(OperandTypeCode type, std::int64_t address) const {
    return "there is no " + RangeText(TypeName(type), address, address) + " on " + mStore.Model();
  }

  const OperandStore& mStore;
  std::vector<CellAssignment> mCells;
};

std::vector<TypeTexts> TextsOf(const OperandStore& store) {
  std::vector<TypeTexts> types;
  for (std::int32_t code = 1; code <= kOperandTypeCount; ++code) {
    const OperandTypeCode type = TypeOfRow(code);
    types.push_back({type, store.Texts({0, store.CountOf(type) - 1, type}), 0});
  }
  return types;
}

std::string LinePlace(std::size_t line) {
  return line == 0 ? std::string() : "line " + std::to_string(line);
}

// Where something is wrong in a file, and what.
struct Finding {
  std::string place;
  std::string what;
};

std::optional<Finding> TakeCsv(std::vector<TypeTexts> rows, Changes& changes) {
  for (TypeTexts& row : rows) {
    std::int64_t address = 0;
    for (std::string& text : row.texts) {
      std::string fault = changes.Put(row.type, address++, std::move(text));
      if (!fault.empty()) return Finding{LinePlace(row.line), std::move(fault)};
    }
  }
  return std::nullopt;
}

std::optional<Finding> TakeSheet(std::vector<SheetValue> values, Changes& changes) {
  for (SheetValue& value : values) {
    std::string fault = changes.Put(value.type, value.address, std::move(value.text));
    if (!fault.empty()) return Finding{"cell " + CellPlace(value.row, value.column), std::move(fault)};
  }
  return std::nullopt;
}

// A type without any value has such a line in every export.
std::string LeftOutText(std::size_t lines) {
  if (lines == 0) return {};
  return "Left out: " + std::to_string(lines) + (lines == 1 ? " line" : " lines") + " of the file without values.";
}

}  // namespace

std::expected<void, TransferFault> ExportCsv(const fs::path& file, const OperandStore& store, char separator) {
  if (std::string why = WhyNoSeparator(separator); !why.empty()) {
    return Refused(kCsvExportRefused, file, {}, std::move(why));
  }
  const auto saved = SaveAtomically(file, PrintGridCsv(TextsOf(store), separator));
  if (!saved) return Refused(kCsvExportRefused, saved.error());
  return {};
}

std::expected<void, TransferFault> ExportSpreadsheet(const ProgramPaths& paths, const fs::path& file,
                                                     const OperandStore& store) {
  const auto saved = ExportSheet(paths.Templates() / kTemplate, file, OperandSheetRows(TextsOf(store)));
  if (!saved) return Refused(kSheetExportRefused, saved.error());
  return {};
}

std::expected<ImportedCells, TransferFault> ImportCsv(const fs::path& file, const OperandStore& store, char separator) {
  if (std::string why = WhyNoSeparator(separator); !why.empty()) {
    return Refused(kCsvImportRefused, file, {}, std::move(why));
  }
  const auto bytes = ReadWholeFile(file, kLargestCsvFile);
  if (!bytes) return Refused(kCsvImportRefused, bytes.error());
  auto grid = ParseGridCsv(*bytes, separator);
  if (!grid) return Refused(kCsvImportRefused, file, LinePlace(grid.error().line), grid.error().what);
  if (grid->rows.empty()) {
    return Refused(kCsvImportRefused, file, {},
                   "no line holds values; is it the separator with which the file was written?");
  }
  Changes changes(store);
  if (auto finding = TakeCsv(std::move(grid->rows), changes)) {
    return Refused(kCsvImportRefused, file, std::move(finding->place), std::move(finding->what));
  }
  return ImportedCells{changes.Take(), LeftOutText(grid->leftOut.size())};
}

std::expected<ImportedCells, TransferFault> ImportSpreadsheet(const fs::path& file, const OperandStore& store) {
  const auto sheet = ReadSheet(file);
  if (!sheet) return Refused(kSheetImportRefused, sheet.error());
  auto values = ParseOperandSheet(*sheet);
  if (!values) return Refused(kSheetImportRefused, file, values.error().place, values.error().what);
  Changes changes(store);
  if (auto finding = TakeSheet(*std::move(values), changes)) {
    return Refused(kSheetImportRefused, file, std::move(finding->place), std::move(finding->what));
  }
  return ImportedCells{changes.Take(), {}};
}

}  // namespace kv::mdlDataTypesView
