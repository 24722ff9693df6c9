#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/AllValues.h"
#include "dataview/DataTypesViewParts.h"
#include "dataview/GridChanges.h"
#include "dataview/GridEdits.h"
#include "dataview/GridState.h"
#include "dataview/GridTransfers.h"
#include "dataview/OnlineMode.h"
#include "dataview/RegionEngine.h"
#include "dataview/ViewContext.h"
#include "dataview/files/GridFile.h"

namespace kv::mdlDataTypesView {

// The operand data view without its window: both grids, all commands, reading and writing the controller.
//
//   made -> Open -> idle <-> busy (a read or write)
//                        <-> on line (passes until the tool is pressed again, or Close)
//        -> Close
// A command that is not allowed in the state does nothing and WhyNot says why.
//
// A command calls the listener at most once with all that it has changed in the grids; the on-line mode once a pass,
// and in a long pass also each time that it lets the user in. While "ID_OnLine" runs, the pacer's DoEvents may come
// back into the view, between two reads: other commands, edits, Close. The view has to stay until Run has returned.
class DataTypesView {
 public:
  DataTypesView(DataTypesViewParts parts, GridListener& listener);

  // Loads the grids of the current session; those that an interrupted read-all or write-all left behind come first.
  void Open();
  // Ends the on-line mode and saves the grids to the session. False, and the view stays open, when they could not be
  // saved and the user, who is asked, does not want to leave without; and while a read or write runs, which is then
  // asked to stop.
  bool Close();

  [[nodiscard]] std::string Caption() const { return mContext.Caption(); }  // "Operand View - Default"
  [[nodiscard]] const OperandStore& Operands() const { return mContext.state.operands; }
  [[nodiscard]] const RegionTable& Regions() const { return mContext.state.regions; }
  [[nodiscard]] const GridSettings& Settings() const { return mContext.state.settings; }
  [[nodiscard]] const ViewStatus& Status() const { return mContext.status; }

  // Where the commands work; the window tells it as the user moves.
  void Select(const GridSelection& operands);
  void SelectRegions(std::vector<std::size_t> rows);

  // Runs a tool by its id ("ID_ReadRegions"); an unknown one does nothing. "ID_OnLine" returns when the mode has ended.
  void Run(std::string_view toolId);
  // Why the tool cannot be used just now; empty when it can.
  [[nodiscard]] std::string WhyNot(std::string_view toolId) const;

  // Edits of the user. An edit is refused with the reason (legal range named) and changes nothing.
  [[nodiscard]] std::string EditFault(OperandTypeCode type, std::int32_t address, std::string_view text) const;
  bool Edit(OperandTypeCode type, std::int32_t address, std::string_view text);
  // False, and nothing changed, for a row that is not there, a code that is not offered, and during a read or write.
  bool SetDescription(std::size_t row, std::string_view text);
  bool SetSize(std::size_t row, SizeCode size);
  bool SetFormat(std::size_t row, FormatCode format);
  void SetHidden(const HiddenRows& hidden);
  // What is only kept: nobody is told.
  void SetLayout(std::vector<std::int32_t> regionColumnWidths, std::int32_t operandColumnWidth);

  // After a loss that ended watching: "ID_OnLine" again; `isByItself` for a try that the user has not asked for, which
  // is with the controller that was watched and no other one.
  void WatchAgain(bool isByItself);
  // Whether another controller answers than before. The link is of no use then until the user, who has been told which
  // one it is, takes that one: the link is closed, and the next command connects anew.
  [[nodiscard]] bool IsOtherController() const;
  // Whether it can be taken: not on a link whose settings name the serial number of the one that is meant.
  [[nodiscard]] bool CanTakeOther() const;
  void TakeOtherController();
  void SetWatchesAgain(bool byItself) { mOnline.SetGoesOn(byItself); }
  [[nodiscard]] bool WatchesAgain() const { return mOnline.GoesOn(); }
  [[nodiscard]] std::string WhyNotByItself() const { return mOnline.WhyNotGoOn(); }
  [[nodiscard]] bool IsTryDue() const { return mOnline.IsTryDue(); }

  // "K220-22-R1 on COM3, 115200 8N1, unit 1": whose operands these are, and where they came from.
  [[nodiscard]] std::string ControllerText() const;
  // What of it is no longer the host's, as a sentence with what to do; empty when all is.
  [[nodiscard]] std::string HostDifference() const;

  // Tells the user in the status line what he tried in vain.
  void Refuse(std::string why);

  // What "ID_Undo" and "ID_Redo" would take back or do again: "Undo typing MI 5"; empty when there is nothing.
  [[nodiscard]] std::string UndoText() const { return mContext.history.UndoText(); }
  [[nodiscard]] std::string RedoText() const { return mContext.history.RedoText(); }

  // How long ago the row's values were read ("12 s"); empty when they never were.
  [[nodiscard]] std::string AgeText(std::size_t row) const;
  // How fresh a cell's last change is while on line: 1 just now, falling to 0 over the time in which marks fade.
  [[nodiscard]] double ChangeMark(OperandTypeCode type, std::int32_t address) const;
  // The same of the last change in a row of the regions table.
  [[nodiscard]] double RegionMark(std::size_t row) const;

 private:
  // A command of the tool bar: what it needs, and what it does.
  struct Tool;
  [[nodiscard]] static const Tool* FindTool(std::string_view toolId);
  [[nodiscard]] std::string ModeFault(const Tool& tool) const;
  [[nodiscard]] std::string NeedFault(const Tool& tool) const;

  void ToggleOnline();
  void ReadRegions() { mEngine.Read(); }
  void WriteRegions();
  [[nodiscard]] bool IsWanted(const std::vector<Region>& regions);
  void ReadAll() { mAll.Read(); }
  void WriteAll() { mAll.Write(); }
  void TakeAllValues() { mAll.Take(); }
  void AddRegion() { mEdits.AddRegions(mSelection); }
  void RemoveRegion();
  void NewRegions() { mEdits.NewRegions(); }
  void SaveRegions() { mTransfers.SaveRegions(); }
  void LoadRegions() { mTransfers.LoadRegions(); }
  void ExportSheet() { mTransfers.ExportSheet(); }
  void ImportSheet() { mTransfers.ImportSheet(); }
  void ExportToCsv() { mTransfers.ExportToCsv(); }
  void ImportFromCsv() { mTransfers.ImportFromCsv(); }
  void Copy() { mTransfers.Copy(mSelection); }
  void Cut() { mTransfers.Cut(mSelection); }
  void Clear() { mTransfers.Clear(mSelection, "clearing"); }
  void Paste() { mTransfers.Paste(mSelection); }
  void Undo() { mEdits.Undo(); }
  void Redo() { mEdits.Redo(); }

  [[nodiscard]] bool IsBusy() const { return mContext.status.mode == ViewMode::Busy; }
  [[nodiscard]] bool IsOnline() const { return mContext.status.mode == ViewMode::Online; }
  [[nodiscard]] std::string OtherModel() const;
  [[nodiscard]] double MarkOf(Instant changedAt) const;
  void SayLoaded(bool isRecovered, const std::vector<std::string>& notes);
  [[nodiscard]] bool SaveState();
  // Both grids as they would be saved now, without cursor and widths.
  [[nodiscard]] std::string GridsText();
  // Tells the listener what has changed, and hands the result on.
  bool Tell(bool result);

  ViewContext mContext;
  RegionEngine mEngine{mContext};
  OnlineMode mOnline{mContext, mEngine};
  GridEdits mEdits{mContext};
  AllValues mAll{mContext, mEngine, mEdits};
  GridTransfers mTransfers{mContext, mEdits};
  GridSelection mSelection;
  std::vector<std::size_t> mSelectedRegions;
  bool mIsOpen = false;
  GridFileStates mFiles;    // when the view was opened
  std::string mOpenedWith;  // the grids at that time
};

}  // namespace kv::mdlDataTypesView
