#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "dataview/GridSelection.h"
#include "dataview/files/ExportImport.h"
#include "desktop/Prompts.h"

namespace kv::mdlDataTypesView {

class GridEdits;
class ViewContext;
struct PasteFault;

// What goes from the grids into files and the clipboard, and back. A dialog that is cancelled ends the command without
// a word.
class GridTransfers {
 public:
  GridTransfers(ViewContext& context, GridEdits& edits) : mContext(context), mEdits(edits) {}

  void SaveRegions();
  void LoadRegions();
  void ExportSheet();
  void ImportSheet();
  void ExportToCsv();
  void ImportFromCsv();

  void Copy(const GridSelection& selection);
  // Copies and clears.
  void Cut(const GridSelection& selection);
  // Empties those cells that may be changed and are not hidden.
  void Clear(const GridSelection& selection, const std::string& title);
  void Paste(const GridSelection& selection);

 private:
  struct FileKind;
  using Imported = std::expected<ImportedCells, TransferFault>;

  [[nodiscard]] std::optional<std::filesystem::path> AskSave(const std::string& title, const FileKind& kind);
  [[nodiscard]] std::optional<std::filesystem::path> AskOpen(const std::string& title, const FileKind& kind);
  [[nodiscard]] std::string SuggestedName(const FileKind& kind) const;
  [[nodiscard]] std::optional<char> AskSeparator();
  void FinishExport(const std::expected<void, TransferFault>& exported, const std::filesystem::path& file);
  void FinishImport(const Imported& imported);
  void Refuse(std::string_view message, const std::string& reason, PromptIcon icon = PromptIcon::Exclamation);
  void Refuse(const PasteFault& fault);

  ViewContext& mContext;
  GridEdits& mEdits;
};

}  // namespace kv::mdlDataTypesView
