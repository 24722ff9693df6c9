#include "download/OtherSpeeds.h"

namespace kv {
namespace {

constexpr int kAsDelivered = 115200;
constexpr int kSpeeds[] = {kFastBootBaud, kAsDelivered, kSlowBootBaud};

}  // namespace

bool FindAtOtherSpeed(Channel& link) {
  const ComParams before = link.GetComParams();
  if (before.baudRate == 0) return false;
  for (const int speed : kSpeeds) {
    if (speed == before.baudRate || !link.OpenLink(link.CommPort(), speed)) continue;
    if (link.GetControllerInfo(link.UnitID())) return true;
    if (!MayBeOfSpeed(link.LastError().code)) break;
  }
  static_cast<void>(link.SetComParams(before));
  return false;
}

}  // namespace kv
