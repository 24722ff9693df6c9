#pragma once

#include <expected>
#include <string>

#include "desktop/Pacer.h"
#include "link/Channel.h"

namespace kv::cache {

// The display of a controller with a panel in SYSTEM mode, for as long as it is needed. Once Enter was called, Leave
// must be.
class SystemMode {
 public:
  SystemMode(Channel& link, Pacer& pacer) : mLink(link), mPacer(pacer) {}

  [[nodiscard]] std::expected<void, LinkError> Enter();
  // Also after a stop. A sentence for the user when the display may be in SYSTEM mode still; empty otherwise.
  [[nodiscard]] std::string Leave();
  // The same for a display that an import before this one, cut by force, has left in it; else asks only.
  [[nodiscard]] std::string LeaveIfShown();

 private:
  [[nodiscard]] std::expected<void, LinkError> Tell(bool isOn);

  Channel& mLink;
  Pacer& mPacer;
  bool mMayBeOn = false;
};

}  // namespace kv::cache
