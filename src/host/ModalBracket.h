#pragma once

#include "host/shared/RemoteHost.h"

namespace kv {

// Keeps the host from taking input while a tool's modal window is open: saves the host's Enabled, sets it to false, and
// gives it back on every way out.
class ModalBracket {
 public:
  explicit ModalBracket(RemoteHost& host) : mHost(host), mWasEnabled(host.Enabled()) { mHost.SetEnabled(false); }
  ~ModalBracket() { mHost.SetEnabled(mWasEnabled); }
  ModalBracket(const ModalBracket&) = delete;
  ModalBracket& operator=(const ModalBracket&) = delete;

 private:
  RemoteHost& mHost;
  bool mWasEnabled;
};

}  // namespace kv
