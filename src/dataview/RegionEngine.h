#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Time.h"
#include "dataview/UndoHistory.h"
#include "dataview/operands/Region.h"
#include "link/ChangeObserver.h"
#include "link/Channel.h"
#include "link/LinkError.h"

namespace kv::mdlDataTypesView {

class ViewContext;

// How far a pass over the regions came. What it read or wrote until then stays.
struct PassOutcome {
  std::size_t done = 0;        // regions
  std::size_t unreadable = 0;  // regions that such a controller cannot be asked for: they stay as they were
  std::size_t readOnly = 0;    // regions that were not written, because their type is not
  std::size_t replaced = 0;    // edited texts that what was read took the place of
  bool isStopped = false;      // on the user's request
  std::optional<LinkError> error = {};

  [[nodiscard]] bool IsWhole() const { return !isStopped && !error; }
};

// What was found when written regions were read back.
struct ComparedRegions {
  PassOutcome pass;
  std::vector<std::string> differences;  // "MI 3 reads 7 instead of 5": of one region each
  std::vector<std::string> moving;       // the same of current values of timers, which change by themselves
};

// Reads the regions of the table into the operand grid, and writes them from it: one request a region, in the order of
// the table.
class RegionEngine {
 public:
  explicit RegionEngine(ViewContext& context) : mContext(context) {}

  void Read();
  // Whether all texts of the regions may be written; false after the user has been told of one that may not.
  [[nodiscard]] bool IsInRange(std::span<const Region> regions);
  // Writes them; when all are written, reads them back and tells what differs.
  void Write(std::span<const Region> regions);

  // Whether the controller's O/S has all the regions. False: the user has been told, or the status line says why it
  // could not be found out.
  [[nodiscard]] bool IsSupported(Channel& channel, std::span<const Region> regions);
  // One pass over the table, without any message. What is read goes into the context's changes.
  [[nodiscard]] PassOutcome ReadPass(Channel& channel);

  // Ends the pass that runs before its next region.
  void EndPass() { mIsEnded = true; }

  // "3 regions"
  [[nodiscard]] static std::string RegionCountText(std::size_t count);
  // " 3 edited values were replaced ...": what the status line adds about them; empty for none.
  [[nodiscard]] static std::string ReplacedText(std::size_t replaced);
  // The same about regions that could not be asked for.
  [[nodiscard]] std::string UnreadableText(std::size_t unreadable) const;

 private:
  // The first text that cannot be written, with its place and what is legal there; empty when all can.
  [[nodiscard]] std::string FirstFault(std::span<const Region> regions) const;
  // The message about read-only types is shown where the first one stands.
  [[nodiscard]] std::optional<PassOutcome> WriteAlone(std::span<const Region> regions);
  [[nodiscard]] PassOutcome WritePass(Channel& channel, std::span<const Region> regions);
  [[nodiscard]] Operation WriteOperation(std::span<const Region> regions) const;
  void ReadRow(Channel& channel, std::size_t row, PassOutcome& outcome);
  void WriteOne(Channel& channel, const Region& region, PassOutcome& outcome);
  [[nodiscard]] Region EditedIn(const Region& region) const;
  void NoteReplaced(const Region& region, std::span<const std::string> texts);
  bool GoOn(std::size_t done, std::size_t total, PassOutcome& outcome);
  void Fail(const LinkError& error, PassOutcome& outcome);
  void SayRead(const PassOutcome& outcome, std::size_t total);
  void SayPartlyWritten(const PassOutcome& outcome, std::span<const Region> regions);

  // Reading back (RegionEngineReadBack.cpp).
  void ReadBackWritten(const PassOutcome& written, std::span<const Region> regions);
  [[nodiscard]] ComparedRegions ComparePass(Channel& channel, std::span<const Region> regions);
  void CompareOne(Channel& channel, const Region& region, std::span<const std::string> written, ComparedRegions& found);
  void SayCompared(const PassOutcome& written, const ComparedRegions& found);

  ViewContext& mContext;
  std::vector<CellChange> mReplaced;  // by the pass that runs
  Instant mLastTurn = Instant::min();
  Instant mLastInput{};
  bool mIsEnded = false;
};

}  // namespace kv::mdlDataTypesView
