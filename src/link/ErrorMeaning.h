#pragma once

#include "link/LinkError.h"

// What a link error means, for all who have to act on one.
namespace kv {

// The controller counts as lost: it may be out of reach, so what is shown of it grows old. After all other errors it
// has answered, or nothing was asked.
[[nodiscard]] constexpr bool MeansLostLink(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == CannotOpen || code == NoReply || code == Damaged || code == LinkLost || code == OtherController;
}

// The same of what is shown of the controller, where a request may or may not have been executed, too: its answer never
// came.
[[nodiscard]] constexpr bool MayMeanLostLink(LinkErrorCode code) {
  return MeansLostLink(code) || code == LinkErrorCode::Unsure;
}

// The link may come back by itself, or the controller be free again: nothing is wrong with the request.
[[nodiscard]] constexpr bool MayComeBack(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == Busy || (MeansLostLink(code) && code != OtherController);
}

// The controller has answered that it does not do it, or not now. It has not executed the request.
[[nodiscard]] constexpr bool IsRefusal(LinkErrorCode code) {
  using enum LinkErrorCode;
  return code == Refused || code == Busy;
}

// Says nothing against the link: the controller answers, or the request was of no use and never sent.
[[nodiscard]] constexpr bool LeavesLinkAsItWas(LinkErrorCode code) {
  using enum LinkErrorCode;
  return IsRefusal(code) || code == NotSupported || code == BadArgument || code == NotRecorded;
}

// It is certain that the controller has not executed the request. After any other error it may have: the request had
// gone out, or may have gone out.
[[nodiscard]] constexpr bool MeansNotExecuted(const LinkError& error) {
  return LeavesLinkAsItWas(error.code) || error.code == LinkErrorCode::CannotOpen || error.isNotExecuted;
}

}  // namespace kv
