#pragma once

#include <algorithm>
#include <cstdint>

namespace kv {

// How many bytes of memory to ask for at once. On a line with 0.1 % damaged characters only every third piece of 512
// bytes arrives whole, but nine of ten pieces of 32: damage halves the piece, a run of good ones doubles it again.
class PieceSize {
 public:
  static constexpr std::uint32_t kSmallest = 32;

  explicit PieceSize(std::uint32_t most) : mMost(most), mSize(most) {}

  [[nodiscard]] std::uint32_t Size() const { return mSize; }
  [[nodiscard]] std::uint32_t Most() const { return mMost; }

  void Damaged() {
    mSize = std::max(mSize / 2, kSmallest);
    mGoodInARow = 0;
  }

  void Good() {
    constexpr int kRun = 6;
    if (mSize == mMost || ++mGoodInARow < kRun) return;
    mSize = std::min(mSize * 2, mMost);
    mGoodInARow = 0;
  }

 private:
  std::uint32_t mMost;
  std::uint32_t mSize;
  int mGoodInARow = 0;
};

}  // namespace kv
