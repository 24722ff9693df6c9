#include "download/DownloadProgress.h"

#include <algorithm>

namespace kv {
namespace {

constexpr Duration kFirstJudgement = std::chrono::seconds(1);

// 4199 bytes are "4.1", rounded down: nothing is told as done before it is.
std::string Kibibytes(std::uint64_t bytes) {
  const std::uint64_t tenths = bytes * 10 / 1024;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

}  // namespace

void DownloadProgress::AmountSent(std::uint64_t done, std::uint64_t total) {
  if (!mStart || total != mTotal || done < mDone) {
    mStart = mPacer.Now();
    mRemaining.Begin();
  }
  mDone = std::min(done, total);  // the last piece may be filled up
  mTotal = total;
}

void DownloadProgress::Exclude(Duration span) {
  if (mStart) *mStart += span;
  mRemaining.Exclude(span);
}

std::string DownloadProgress::Text() const {
  if (!mStart || mTotal == 0) return {};
  std::string text = Kibibytes(mDone) + " of " + Kibibytes(mTotal) + " KiB";
  const Duration passed = mPacer.Now() - *mStart;
  if (passed >= kFirstJudgement && mDone > 0) {
    const double rate = static_cast<double>(mDone) / std::chrono::duration<double>(passed).count();
    text += ", " + Kibibytes(static_cast<std::uint64_t>(rate)) + " KiB/s";
  }
  const std::string left = mRemaining.Text(mDone, mTotal);
  return text + (left.empty() ? "" : ", " + left);
}

}  // namespace kv
