#include "clone/DumpProgress.h"

#include <algorithm>

#include "clone/DumpWindow.h"

namespace kv {

namespace {

std::string Kibibytes(std::uint64_t bytes) {
  return std::to_string((bytes + 1023) / 1024);
}

std::string AmountText(std::uint64_t done, std::uint64_t total) {
  return Kibibytes(done) + " of " + Kibibytes(total) + " KiB";
}

}  // namespace

void DumpProgress::FillSegments(std::span<const CloneSegment> segments, const SegmentBoxes& boxes) {
  for (const CloneSegment& segment : segments) {
    const bool isIncluded = IsIncluded(segment.code, boxes);
    if (isIncluded) ++mIncluded;
    mParts.push_back({segment.code, mTotal, segment.length, mIncluded});
    if (isIncluded) mTotal += segment.length;
  }
}

void DumpProgress::SegmentIndex(int index) {
  if (mIndex == 0) mRemaining.Begin();  // questions to the user came before it
  mIndex = static_cast<std::size_t>(index);
}

void DumpProgress::ProgressBarInit(std::int64_t maximum) {
  if (mParts.empty()) mRemaining.Begin();
  mMaximum = maximum;
  mValue = 0;
}

DumpProgress::Amount DumpProgress::InAll() const {
  const bool isCreate = mIndex > 0 && mIndex <= mParts.size();
  if (!isCreate) {
    const auto most = static_cast<std::uint64_t>(std::max<std::int64_t>(1, mMaximum));
    return {std::min(static_cast<std::uint64_t>(mValue), most), most};
  }
  const Part& part = mParts[mIndex - 1];
  return {part.before + DoneOf(part), std::max<std::uint64_t>(1, mTotal)};
}

std::uint64_t DumpProgress::DoneOf(const Part& part) const {
  return std::min(static_cast<std::uint64_t>(mValue) * kDumpBlock, part.length);
}

std::string DumpProgress::Text() const {
  if (mMaximum < 0) return "";
  if (mIndex > 0 && mIndex <= mParts.size()) return CreateText(mParts[mIndex - 1]);
  const auto value = static_cast<std::uint64_t>(mValue);
  const auto maximum = static_cast<std::uint64_t>(mMaximum);
  return WithTimeLeft("Line " + std::to_string(value) + " of " + std::to_string(maximum), value, maximum);
}

std::string DumpProgress::CreateText(const Part& part) const {
  const std::uint64_t done = DoneOf(part);
  const std::string place = part.code + " (" + std::to_string(part.number) + " of " + std::to_string(mIncluded) + ")";
  const std::string text = place + ": " + AmountText(done, part.length) + "; in all ";
  return WithTimeLeft(text + AmountText(part.before + done, mTotal), part.before + done, mTotal);
}

std::string DumpProgress::WithTimeLeft(std::string text, std::uint64_t done, std::uint64_t total) const {
  const std::string left = mRemaining.Text(done, total);
  return left.empty() ? text : text + ", " + left;
}

}  // namespace kv
