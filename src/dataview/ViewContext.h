#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/DataTypesViewParts.h"
#include "dataview/GridChanges.h"
#include "dataview/GridState.h"
#include "dataview/UndoHistory.h"
#include "link/LinkError.h"

namespace kv::mdlDataTypesView {

// Cells that changed, one span a type.
class CellSpans {
 public:
  void Add(OperandTypeCode type, std::int32_t from, std::int32_t to);
  [[nodiscard]] bool Touches(const Region& region) const;
  void AddTo(GridChanges& changes) const;

 private:
  struct Span {
    std::int32_t from = 0;
    std::int32_t to = -1;
  };
  std::array<Span, kOperandTypeCount> mSpans{};
};

// What the parts of the view work on in common: both grids, what has changed since the listener was last told, the
// status and the history. It holds no rule about regions or the controller.
class ViewContext {
 public:
  ViewContext(DataTypesViewParts viewParts, GridListener& viewListener);

  DataTypesViewParts parts;
  GridState state;
  ViewStatus status;
  GridChanges changes;
  UndoHistory history;

  [[nodiscard]] const std::string& Model() const { return state.operands.Model(); }
  [[nodiscard]] std::string Caption() const;
  // Of the driver, as it is now; empty without one.
  [[nodiscard]] std::string CurrentLink() const;
  [[nodiscard]] Instant Now() const { return parts.pacer.Now(); }
  // Whether the on-line mode reads the operand, which would take the place of what is put there.
  [[nodiscard]] bool IsReadOnline(OperandTypeCode type, std::int32_t address) const;

  // The status line; shown with the next TellStatus. What the user is told about his own doing takes the place of
  // whatever stands there.
  void Say(std::string message);
  void SayError(std::string message);
  // The same of what is long, with its cause and what to do: it stands in the banner, too, to be read whole.
  void SayRefusal(const std::string& message);
  void SayLinkError(const LinkError& error, const std::string& whatElse = {});
  // What comes while regions are watched waits until the message before it can have been read.
  void SayInPassing(std::string message);
  // The user does something else: what stood there need not be read any longer.
  void EndReading() { mReadUntil = Instant::min(); }
  // Something that was asked for has been done.
  void NoteSuccess();
  // How often the status line was set.
  [[nodiscard]] std::uint64_t SaidCount() const { return mSaidCount; }

  // A message box under the view's caption.
  void ShowBox(std::string_view text, PromptIcon icon = PromptIcon::Exclamation);
  [[nodiscard]] bool AskYesNo(std::string_view text, bool canLose = false);

  void SetMode(ViewMode mode);
  void TellStatus();
  // The same, but not more often than a user can read it.
  void TellProgress();
  // Announces what has changed since the last time, if anything, in one call.
  void TellChanges();

  // Notes cells that changed, and builds anew the regions that show them.
  void CellsChanged(const CellSpans& spans);
  void RefreshRow(std::size_t row);
  // The rows that show any of these operands.
  void RefreshRowsOf(const Region& region);
  // The row's description, size or format changed.
  void RowSettingsChanged(std::size_t row);
  // Rows came, went or moved. The new ones have no values yet: they are built here.
  void RowsReplaced();

 private:
  void Show(std::string message, bool isError);

  GridListener& mListener;
  Instant mProgressToldAt = Instant::min();
  std::string mInPassing;  // waits until then
  Instant mReadUntil = Instant::min();
  std::uint64_t mSaidCount = 0;
};

}  // namespace kv::mdlDataTypesView
