#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/GridChanges.h"
#include "dataview/GridSelection.h"
#include "dataview/OperandStore.h"
#include "dataview/RegionTable.h"
#include "desktop/Clipboard.h"
#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "host/shared/SharedState.h"

namespace kv {
class clsHexSelector;
}

namespace kv::mdlDataTypesView {

// What the view keeps beside the contents of its two grids, between one opening and the next.
struct GridSettings {
  HiddenRows hidden;
  std::vector<std::int32_t> regionColumnWidths;  // device-independent pixels; empty: the window's own
  std::int32_t operandColumnWidth = 0;           // 0: the window's own
  std::int32_t currentRow = 1;                   // the operand grid's cursor
  std::int32_t currentColumn = 1;

  bool operator==(const GridSettings&) const = default;
};

// Both grids as they are saved and restored.
struct GridState {
  OperandStore operands;
  RegionTable regions;
  GridSettings settings;
};

struct DataTypesViewParts {
  SharedState& shared;
  Prompts& prompts;
  Pacer& pacer;
  Clipboard& clipboard;
  clsHexSelector& hexSelector;  // asks for the separator of CSV files
};

// The operand data view without its window: both grids, all commands, reading and writing the controller.
//
//   made -> Open -> idle <-> busy (a read or write)
//                        <-> on line (passes until the tool is pressed again, or Close)
//        -> Close
// A command that is not allowed in the state does nothing and WhyNot says why.
class DataTypesView {
 public:
  DataTypesView(DataTypesViewParts parts, GridListener& listener);
  ~DataTypesView();

  // Loads the grids of the current session; those that an interrupted read-all or write-all left behind come first.
  void Open();
  // Ends the on-line mode and saves the grids to the session. False, told to the user, when they could not be saved.
  bool Close();

  [[nodiscard]] std::string Caption() const;  // "Data Types - Default"
  [[nodiscard]] const OperandStore& Operands() const { return mState.operands; }
  [[nodiscard]] const RegionTable& Regions() const { return mState.regions; }
  [[nodiscard]] const GridSettings& Settings() const { return mState.settings; }
  [[nodiscard]] const ViewStatus& Status() const { return mStatus; }

  // Where the commands work; the window tells it as the user moves.
  void Select(const GridSelection& operands);
  void SelectRegions(std::vector<std::size_t> rows);
  [[nodiscard]] const GridSelection& Selection() const { return mSelection; }

  // Runs a tool by its id ("ID_ReadRegions"); an unknown one does nothing. "ID_OnLine" returns when the mode has ended.
  void Run(std::string_view toolId);
  // Why the tool cannot be used just now; empty when it can.
  [[nodiscard]] std::string WhyNot(std::string_view toolId) const;

  // Edits of the user. An edit is refused with the reason (legal range named) and changes nothing.
  [[nodiscard]] std::string EditFault(OperandTypeCode type, std::int32_t address, std::string_view text) const;
  bool Edit(OperandTypeCode type, std::int32_t address, std::string_view text);
  bool SetDescription(std::size_t row, std::string_view text);
  bool SetSize(std::size_t row, SizeCode size);
  bool SetFormat(std::size_t row, FormatCode format);
  void SetHidden(std::int32_t row, bool hidden);
  void SetLayout(std::vector<std::int32_t> regionColumnWidths, std::int32_t operandColumnWidth);

  // What "ID_Undo" and "ID_Redo" would take back or do again: "Undo typing MI 5"; empty when there is nothing.
  [[nodiscard]] std::string UndoText() const;
  [[nodiscard]] std::string RedoText() const;

  // How long ago the row's values were read ("12 s"); empty when they never were.
  [[nodiscard]] std::string AgeText(std::size_t row) const;
  // How fresh a cell's last change is while on line: 1 just now, falling to 0 over the time in which marks fade.
  [[nodiscard]] double ChangeMark(OperandTypeCode type, std::int32_t address) const;

 private:
  DataTypesViewParts mParts;
  GridListener& mListener;
  GridState mState;
  GridSelection mSelection;
  std::vector<std::size_t> mSelectedRegions;
  ViewStatus mStatus;
};

}  // namespace kv::mdlDataTypesView
