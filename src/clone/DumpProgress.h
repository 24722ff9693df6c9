#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "clone/CloneSegment.h"
#include "desktop/RemainingTime.h"

namespace kv {

// How far a create or a restore has come in all, put together from what the engine tells its window: the engine counts
// blocks of each segment for itself. One object serves one operation.
class DumpProgress {
 public:
  explicit DumpProgress(const Pacer& pacer) : mRemaining(pacer) {}

  // The callbacks of DumpWindow with the same meaning.
  void FillSegments(std::span<const CloneSegment> segments, const SegmentBoxes& boxes);
  void SegmentIndex(int index);
  void ProgressBarInit(std::int64_t maximum);
  void ProgressBarValue(std::int64_t value) { mValue = value; }

  // How far it is in all, in bytes of a create or lines of a restore; the total is at least 1.
  struct Amount {
    std::uint64_t done = 0;
    std::uint64_t total = 1;
  };
  [[nodiscard]] Amount InAll() const;

  // "OP (1 of 6): 4 of 6 KiB; in all 4 of 102 KiB, about 12 s left" or "Line 30 of 500, about 10 s left"; empty before
  // the work has begun.
  [[nodiscard]] std::string Text() const;

 private:
  struct Part {
    std::string code;
    std::uint64_t before = 0;  // bytes of the included segments before this one
    std::uint64_t length = 0;
    int number = 0;  // among the included segments, from 1 on
  };

  [[nodiscard]] std::uint64_t DoneOf(const Part& part) const;
  [[nodiscard]] std::string CreateText(const Part& part) const;
  [[nodiscard]] std::string WithTimeLeft(std::string text, std::uint64_t done, std::uint64_t total) const;

  RemainingTime mRemaining;
  std::vector<Part> mParts;  // of a create, one a segment of the table
  std::size_t mIndex = 0;    // in mParts, from 1 on
  int mIncluded = 0;
  std::uint64_t mTotal = 0;
  std::int64_t mMaximum = -1;
  std::int64_t mValue = 0;
};

}  // namespace kv
