#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "dataview/GridSelection.h"
#include "link/LinkError.h"

namespace kv::mdlDataTypesView {

// What one command or one pass has changed, as one span for each grid, so that a window announces and paints once.
struct GridChanges {
  // Cells of the operand grid; empty (bottom < top) when none.
  GridSelection operands{0, 0, -1, -1};
  // Rows of the regions table from 0; empty when last < first.
  std::int32_t firstRegion = 0;
  std::int32_t lastRegion = -1;
  bool onlyValues = true;           // of the regions table: only the values column
  bool regionRowsReplaced = false;  // rows came, went or moved
  bool operandsReplaced = false;    // hidden rows, counts or all contents

  void AddOperands(OperandTypeCode type, std::int32_t from, std::int32_t to);
  void AddRegion(std::int32_t row);
  [[nodiscard]] bool IsEmpty() const;
};

// Online: the regions are read again and again; the user is told that the view watches.
enum class ViewMode { Idle, Busy, Online };

// The controller is out of reach since a command failed, so that what is shown grows old.
struct LinkLoss {
  LinkError error;
  std::string consequence = {};                    // what became of the command, as sentences
  bool wasWatching = false;                        // the command was to watch the regions
  std::optional<std::uint32_t> serialNumber = {};  // of the controller that was watched

  // What happened, its cause, what to do, and what became of the command: a sentence a line.
  [[nodiscard]] std::string Text() const;
};

struct LastViewError {
  std::string text;
  std::chrono::local_seconds at;
};

// What the status bar of the view shows.
struct ViewStatus {
  ViewMode mode = ViewMode::Idle;
  std::string message;  // the outcome of the last command, or the last error
  bool isError = false;
  std::optional<LastViewError> lastError = {};  // goes with the next command that does what it was asked
  std::optional<LinkLoss> loss = {};            // goes with the next whole read or write
  std::string refusal = {};      // why the controller or a file refused the last command; goes as lastError
  std::string link = {};         // where the values come from: the link of the last read or write
  double passesPerSecond = 0.0;  // while on line
  std::uint64_t passes = 0;
  std::size_t edited = 0;           // cells that are edited and not written
  std::size_t done = 0, total = 0;  // regions of the running read or write
};

// Who shows the view: the window, the command line, a test.
class GridListener {
 public:
  virtual ~GridListener() = default;
  virtual void GridsChanged(const GridChanges& changes) = 0;
  // The mode, the status or which tools may be used changed.
  virtual void StatusChanged() = 0;
};

}  // namespace kv::mdlDataTypesView
