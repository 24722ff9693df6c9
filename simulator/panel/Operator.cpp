#include "simulator/panel/Operator.h"

#include <utility>

namespace sim {

void Operator::Take(std::uint16_t lease, std::string name, kv::Instant now) {
  mLease = lease;
  mName = std::move(name);
  LetGo();
  Renew(now);
}

void Operator::Leave() {
  mLease = 0;
  mName.clear();
  LetGo();
}

void Operator::Hold(Press press, kv::Instant now) {
  mIsTap = press == Press::Tap;
  mHeldUntil = now + (mIsTap ? kTapTime : kHoldTime);
}

std::optional<Operator::End> Operator::NextEnd() const {
  if (mHeldUntil && *mHeldUntil <= mLeaseUntil) return End{End::Of::Hold, *mHeldUntil};
  if (mLease != 0) return End{End::Of::Lease, mLeaseUntil};
  return std::nullopt;
}

}  // namespace sim
