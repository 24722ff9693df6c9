#include "dataview/GridTransfers.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/DateText.h"
#include "base/PathText.h"
#include "dataview/GridEdits.h"
#include "dataview/ViewContext.h"
#include "dataview/files/ClipboardTable.h"
#include "dataview/files/Csv.h"
#include "dataview/files/RegionFile.h"
#include "editors/clsHexSelector.h"

namespace kv::mdlDataTypesView {

// A kind of file, with the word under which the folder used last for it is kept.
struct GridTransfers::FileKind {
  const char* filter;
  const char* purpose;
  const char* extension;  // of the suggested name; none: regions are named by what they are for

  static const FileKind kRegions;
  static const FileKind kCsv;
  static const FileKind kSheet;
};
constexpr GridTransfers::FileKind GridTransfers::FileKind::kRegions{"*.axt|*.axt", "Regions", nullptr};
constexpr GridTransfers::FileKind GridTransfers::FileKind::kCsv{"*.csv|*.csv", "Values", ".csv"};
constexpr GridTransfers::FileKind GridTransfers::FileKind::kSheet{"*.xls|*.xls", "Values", ".xls"};

namespace {

std::string NameOf(const std::filesystem::path& file) {
  return Utf8FromPath(file.filename());
}

std::optional<std::filesystem::path> PathOf(const std::optional<std::string>& chosen) {
  return chosen.transform([](const std::string& text) { return PathFromUtf8(text); });
}

}  // namespace

// ---- region files ----

void GridTransfers::SaveRegions() {
  const auto file = AskSave("Save Regions", FileKind::kRegions);
  if (!file) return;
  const auto saved = SaveRegionFile(*file, mContext.state.regions.Rows(), mContext.Model());
  if (!saved) {
    const std::string text = "The regions could not be saved. " + saved.error().Text() + ".";
    return Refuse(text, text);
  }
  mContext.Say(
      "Regions saved in " + NameOf(*file) + "." +
      (*saved ? " Some characters of the descriptions cannot stand in such a file; \"?\" stands for them." : ""));
}

void GridTransfers::LoadRegions() {
  if (!mContext.AskYesNo(kValuesWillBeDeletedQuestion)) return;
  const auto file = AskOpen("Load Regions", FileKind::kRegions);
  if (!file) return;
  auto rows = LoadRegionFile(*file, mContext.Model());
  if (rows) {
    mEdits.ReplaceRegions(*std::move(rows), GridEdits::Values::Removed, "loading regions");
    return mContext.Say("Regions loaded from " + NameOf(*file) + ".");
  }
  if (rows.error().kind == RegionFileFault::Kind::InvalidRegions) {
    mEdits.ReplaceRegions({}, GridEdits::Values::Kept, "loading regions");
  }
  Refuse(rows.error().Message(), NameOf(*file) + ": " + rows.error().reason);
}

// ---- exports and imports ----

void GridTransfers::ExportSheet() {
  const auto file = AskSave("Export All values to Excel", FileKind::kSheet);
  if (file) FinishExport(ExportSpreadsheet(mContext.parts.shared.paths, *file, mContext.state.operands), *file);
}

void GridTransfers::ImportSheet() {
  const auto file = AskOpen("Import All values from Excel", FileKind::kSheet);
  if (file) FinishImport(ImportSpreadsheet(*file, mContext.state.operands));
}

void GridTransfers::ExportToCsv() {
  const auto separator = AskSeparator();
  if (!separator) return;
  const auto file = AskSave("Export to CSV", FileKind::kCsv);
  if (file) FinishExport(ExportCsv(*file, mContext.state.operands, *separator), *file);
}

void GridTransfers::ImportFromCsv() {
  const auto separator = AskSeparator();
  if (!separator) return;
  const auto file = AskOpen("Import from CSV", FileKind::kCsv);
  if (file) FinishImport(ImportCsv(*file, mContext.state.operands, *separator));
}

void GridTransfers::FinishExport(const std::expected<void, TransferFault>& exported,
                                 const std::filesystem::path& file) {
  if (!exported) return Refuse(exported.error().message, exported.error().reason);
  mContext.Say("All values exported to " + NameOf(file) + ".");
}

void GridTransfers::FinishImport(const Imported& imported) {
  if (!imported) return Refuse(imported.error().message, imported.error().reason);
  if (mEdits.Assign(imported->cells, "importing") && !imported->note.empty()) {
    mContext.Say(mContext.status.message + " " + imported->note);
  }
}

// ---- the clipboard ----

void GridTransfers::Copy(const GridSelection& selection) {
  mContext.parts.clipboard.SetText(CopyText(mContext.state.operands, selection));
  mContext.Say("Copied.");
}

void GridTransfers::Cut(const GridSelection& selection) {
  Copy(selection);
  Clear(selection, "cutting");
}

void GridTransfers::Clear(const GridSelection& selection, const std::string& title) {
  const GridSelection cells = selection.Normalised();
  std::vector<CellAssignment> emptied;
  for (std::int32_t row = std::max(cells.top, 1); row <= std::min(cells.bottom, kOperandTypeCount); ++row) {
    if (mContext.state.settings.hidden.IsHidden(row)) continue;
    const OperandTypeCode type = TypeOfRow(row);
    const std::int32_t end = std::min(cells.right, mContext.state.operands.CountOf(type));
    for (std::int32_t column = std::max(cells.left, 1); column <= end; ++column) {
      emptied.push_back({.type = type, .address = column - 1, .text = {}});
    }
  }
  mEdits.Assign(emptied, title);
}

void GridTransfers::Paste(const GridSelection& selection) {
  if (!mContext.parts.clipboard.HasText()) return Refuse(kClipboardNoTextMessage, std::string(kClipboardNoTextMessage));
  const auto table = ParseClipboard(mContext.parts.clipboard.GetText());
  if (!table) return Refuse(table.error());
  const auto cells = PlacePaste(*table, selection, mContext.state.settings.hidden, mContext.state.operands);
  if (!cells) return Refuse(cells.error());
  if (mEdits.Assign(*cells, "pasting") && table->hasRest) {
    mContext.Say(mContext.status.message + " What followed the last line end was left out.");
  }
}

// ---- asking and telling ----

std::optional<std::filesystem::path> GridTransfers::AskSave(const std::string& title, const FileKind& kind) {
  return PathOf(mContext.parts.prompts.SaveFile(
      {.title = title, .filter = kind.filter, .purpose = kind.purpose, .initial = SuggestedName(kind)}));
}

std::optional<std::filesystem::path> GridTransfers::AskOpen(const std::string& title, const FileKind& kind) {
  return PathOf(mContext.parts.prompts.OpenFile({.title = title, .filter = kind.filter, .purpose = kind.purpose}));
}

// Says whose values they are, and of which day: "Default-K220-22-R1-2026-11-21.csv".
std::string GridTransfers::SuggestedName(const FileKind& kind) const {
  if (kind.extension == nullptr) return {};
  std::string name = mContext.parts.shared.CurrentSession + "-";
  for (const char each : mContext.Model()) {
    const bool isPlain = (each >= '0' && each <= '9') || (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z');
    if (isPlain) {
      name += each;
    } else if (!name.ends_with('-')) {
      name += '-';
    }
  }
  return name + "-" + DateText(mContext.parts.clock.LocalTime()) + kind.extension;
}

std::optional<char> GridTransfers::AskSeparator() {
  const auto code = mContext.parts.hexSelector.SelectChar();
  if (!code) return std::nullopt;
  const char separator = static_cast<char>(*code);
  const std::string why = WhyNoSeparator(separator);
  if (why.empty()) return separator;
  Refuse(why, why);
  return std::nullopt;
}

void GridTransfers::Refuse(std::string_view message, const std::string& reason, PromptIcon icon) {
  if (reason.empty() || reason == message) {
    mContext.SayError(std::string(message));
  } else {
    mContext.SayRefusal(reason);
  }
  mContext.ShowBox(message, icon);
}

void GridTransfers::Refuse(const PasteFault& fault) {
  Refuse(fault.message, fault.reason, fault.icon);
}

}  // namespace kv::mdlDataTypesView
