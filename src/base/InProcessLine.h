#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Time.h"

namespace kv {

// A byte line to a partner that lives in this process, on a clock that the caller holds. The simulated controllers
// implement it, the driver's simulated port uses it, and neither needs to see the other.
class InProcessLine {
 public:
  virtual ~InProcessLine() = default;

  // Opens a fresh connection. False while the partner does not take one (it was told to be out of reach).
  [[nodiscard]] virtual bool Connect(Instant now) = 0;
  virtual void Disconnect(Instant now) = 0;
  // False before Connect and after either side has cut the connection.
  [[nodiscard]] virtual bool IsConnected() const = 0;

  // The speed that the caller's end is set to, in bits a second; 0, as at first: it has none, and nothing that it sends
  // or hears is ever garbled.
  virtual void SetBaud(int) {}

  // Hands bytes to the partner, as sent at `now`. Bytes written while not connected are lost.
  virtual void Write(std::string_view bytes, Instant now) = 0;

  // Takes the bytes that have arrived until `now`; empty when none have.
  [[nodiscard]] virtual std::string Read(Instant now) = 0;

  // When something next happens by itself (bytes arrive, the connection is cut); nothing when nothing is on its way.
  [[nodiscard]] virtual std::optional<Instant> NextEvent() const = 0;
};

}  // namespace kv
