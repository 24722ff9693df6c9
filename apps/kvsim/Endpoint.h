#pragma once

#include <memory>
#include <optional>
#include <string>

#include "apps/kvsim/Stream.h"
#include "base/Time.h"

namespace kvsim {

// Where clients come in.
class Endpoint {
 public:
  virtual ~Endpoint() = default;

  // The line that is printed when clients can come: "listening on 127.0.0.1:20300".
  [[nodiscard]] virtual std::string ReadyText() const = 0;

  // What to wait on for the next client; nothing when only time brings one.
  [[nodiscard]] virtual std::optional<Handle> WaitHandle() const = 0;
  // When to look for the next client by itself.
  [[nodiscard]] virtual std::optional<kv::Instant> NextEvent() const { return std::nullopt; }

  // The next client, or null when none is there.
  [[nodiscard]] virtual std::unique_ptr<Stream> Admit(kv::Instant now) = 0;
  // A client that came in here has left.
  virtual void Dismissed(kv::Instant) {}
};

}  // namespace kvsim
