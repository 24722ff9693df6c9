#include "KvTele2/panel/Rhythm.h"

#include <algorithm>

namespace kv::panel {
namespace {

// What fits into the time that a piece may take.
std::uint16_t LongestPiece(const PanelLinkCost& cost) {
  if (cost.perByte <= Duration{}) return cost.mostPiece;
  const auto bytes = std::max((Rhythm::kLongestPiece - cost.perRequest) / cost.perByte, Duration::rep{0});
  return static_cast<std::uint16_t>(
      std::clamp<Duration::rep>(bytes, kLeastPanelPiece, std::max(cost.mostPiece, kLeastPanelPiece)));
}

}  // namespace

Rhythm::Rhythm(const PanelLinkCost& cost) : mCost(cost), mMostPiece(LongestPiece(cost)), mPiece(mMostPiece) {}

void Rhythm::NoteAnswer(Instant began, Instant ended, std::size_t bytes, bool hasMore) {
  if (bytes > 0) {
    mLivelyUntil = ended + kLively;
    FitPiece(ended - began, bytes);
  }
  if (hasMore) {
    mNext = ended;
    return;
  }
  mPause = ended < mLivelyUntil ? kFast : std::min(2 * mPause, kStill);
  const Duration onWire = mCost.perRequest + mCost.perByte * static_cast<Duration::rep>(bytes);
  mNext = std::max(began + mPause, ended + (kShareOfLine - 1) * onWire);
}

void Rhythm::NoteFailure(Instant ended) {
  mPause = kStill;
  mNext = ended + kStill;
}

void Rhythm::NoteInput(Instant now) {
  mLivelyUntil = now + kLively;
  mPause = kFast;
  mNext = std::min(mNext, now + kFast);
}

void Rhythm::NoteLook(Instant now) {
  mLivelyUntil = now + kLively;
  mPause = kFast;
  mNext = now;
}

// Halved where a piece took too long, doubled where a full one took less than half of what it may.
void Rhythm::FitPiece(Duration took, std::size_t bytes) {
  constexpr std::size_t kNearlyFull = 2;  // at least this part of the piece came
  if (took > 2 * kLongestPiece && mPiece > kLeastPanelPiece) {
    mPiece = std::max<std::uint16_t>(mPiece / 2, kLeastPanelPiece);
  } else if (took < kLongestPiece / 2 && bytes * kNearlyFull > mPiece) {
    mPiece = static_cast<std::uint16_t>(std::min<unsigned>(2U * mPiece, mMostPiece));
  }
}

}  // namespace kv::panel
