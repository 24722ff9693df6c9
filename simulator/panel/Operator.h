#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "base/Time.h"

namespace sim {

// Who operates a panel from afar, and for how long what he holds is held. One lease at a time; a lease that nobody
// names ends, and what is held without being held anew is let go, both by the controller's own clock.
//
//   nobody --Take--> operating --End, silence of kLeaseTime--> nobody
//   operating: nothing held --Press--> held --LetGo, silence of kHoldTime--> nothing held
class Operator {
 public:
  static constexpr kv::Duration kLeaseTime = std::chrono::seconds(3);
  static constexpr kv::Duration kHoldTime = std::chrono::milliseconds(500);
  static constexpr kv::Duration kTapTime = std::chrono::milliseconds(100);

  enum class Press : std::uint8_t { Down, Tap };
  // What the clock ends next.
  struct End {
    enum class Of : std::uint8_t { Hold, Lease } of;
    kv::Instant at;
  };

  [[nodiscard]] std::uint16_t Lease() const { return mLease; }  // 0: nobody's
  [[nodiscard]] bool IsGood(std::uint16_t lease) const { return lease != 0 && lease == mLease; }
  [[nodiscard]] const std::string& Name() const { return mName; }
  [[nodiscard]] bool HoldsSomething() const { return mHeldUntil.has_value(); }

  void Take(std::uint16_t lease, std::string name, kv::Instant now);
  void Renew(kv::Instant now) { mLeaseUntil = now + kLeaseTime; }
  void Leave();

  void Hold(Press press, kv::Instant now);
  // Not what is only tapped: that ends by itself.
  [[nodiscard]] bool IsHeldDown() const { return mHeldUntil && !mIsTap; }
  void HoldOn(kv::Instant now) { mHeldUntil = now + kHoldTime; }
  void LetGo() { mHeldUntil.reset(); }

  [[nodiscard]] std::optional<End> NextEnd() const;

 private:
  std::uint16_t mLease = 0;
  std::string mName;
  kv::Instant mLeaseUntil;
  std::optional<kv::Instant> mHeldUntil;
  bool mIsTap = false;
};

}  // namespace sim
