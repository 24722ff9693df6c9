#pragma once

#include <algorithm>
#include <cstdint>

#include "base/Time.h"

namespace sim {

// What a controller's flash is busy with. It takes the time that passes in Advance, and only one work goes on at a
// time.
class FlashWork {
 public:
  enum class Kind : std::uint8_t { None, Test, EraseOs, EraseProject, Program };

  void Start(Kind kind, kv::Duration length) {
    mKind = kind;
    mLength = length;
    mPassed = kv::Duration{0};
  }
  void Advance(kv::Duration elapsed) {
    mPassed = std::min(mPassed + elapsed, mLength);
    if (mPassed == mLength) mKind = Kind::None;
  }

  [[nodiscard]] bool IsBusy() const { return mKind != Kind::None; }
  [[nodiscard]] bool IsBusyWith(Kind kind) const { return mKind == kind; }
  // 0 to 99 while busy, 100 when the last work is done.
  [[nodiscard]] int PercentDone() const {
    return IsBusy() ? static_cast<int>(std::min<std::int64_t>(99, mPassed * 100 / mLength)) : 100;
  }

 private:
  Kind mKind = Kind::None;
  kv::Duration mLength{0};
  kv::Duration mPassed{0};
};

}  // namespace sim
