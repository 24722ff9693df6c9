#include "dataview/files/ExportImport.h"

#include <optional>
#include <utility>

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "dataview/GridSelection.h"
#include "dataview/files/OperandCsv.h"
#include "dataview/files/OperandSheet.h"
#include "dataview/operands/OperandCatalogue.h"
#include "dataview/operands/ValueEntry.h"
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

  // Why the text cannot be taken there; empty when it was.
  [[nodiscard]] std::string Put(OperandTypeCode type, std::int64_t address, std::string&& text) {
    if (address < 0 || address >= mStore.CountOf(type)) {
      return text.empty() ? std::string() : NoSuchOperand(type, address);
    }
    const auto cell = static_cast<std::int32_t>(address);
    if (mStore.Text(type, cell) == text) return {};
    std::string fault = DaysFault(type, mStore.Model(), text);
    if (fault.empty()) mCells.push_back({type, cell, std::move(text)});
    return fault;
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
    types.push_back({type, store.Texts({0, store.CountOf(type) - 1, type})});
  }
  return types;
}

// Where something is wrong in a file, and what.
struct Finding {
  std::string place;
  std::string what;
};

std::optional<Finding> TakeCsv(std::vector<OperandValue> values, Changes& changes) {
  for (OperandValue& value : values) {
    std::string fault = changes.Put(value.type, value.address, std::move(value.text));
    if (!fault.empty()) return Finding{LineError{value.line}.Place(), std::move(fault)};
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
  auto csv = ParseOperandCsv(*bytes, separator, CsvForm::Grid);
  if (!csv) return Refused(kCsvImportRefused, file, csv.error().Place(), csv.error().what);
  if (csv->values.empty()) {
    return Refused(kCsvImportRefused, file, {},
                   "no line holds values; is it the separator with which the file was written?");
  }
  Changes changes(store);
  if (auto finding = TakeCsv(std::move(csv->values), changes)) {
    return Refused(kCsvImportRefused, file, std::move(finding->place), std::move(finding->what));
  }
  return ImportedCells{changes.Take(), csv->LeftOutText()};
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
