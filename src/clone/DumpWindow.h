#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "clone/CloneSegment.h"

namespace kv {

// Bytes that one step of a create's progress stands for; the last one of a segment may have less.
inline constexpr std::uint32_t kDumpBlock = 512;

// What the clone engine asks of its surroundings while it works: the cloner window, a terminal or a test.
class DumpWindow {
 public:
  virtual ~DumpWindow() = default;

  // The controller's segment table, once a create, before anything is done to the controller.
  virtual void FillSegments(std::span<const CloneSegment> segments) = 0;
  // The segment about to be read: its place in the full table, counted from 1.
  virtual void Event_SegmentIndex(int index) = 0;
  // Create: blocks of the segment, of kDumpBlock bytes. Restore: command lines of the file.
  virtual void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) = 0;
  virtual void Event_ProgressBarValue(std::int64_t value) = 0;
  // The command line about to be sent, as it stands in the file: its CR is at its end.
  virtual void Event_AddWriteCommand(std::string_view line) = 0;
  // Draws the list anew; for callers that fill it outside of the events above.
  virtual void Event_Refresh() = 0;

  // The four boxes. Asked once a create, after FillSegments.
  [[nodiscard]] virtual SegmentBoxes CheckedSegments() const = 0;
};

}  // namespace kv
