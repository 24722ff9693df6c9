#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/Time.h"

namespace kv {

// The port under a link, for raw traffic past the channel's exchanges (the cloner sends ready-made frames on it).
// Every kind of port offers it. Nothing else may use the channel meanwhile.
class SerialPortObject {
 public:
  virtual ~SerialPortObject() = default;

  // Setting it to 0 throws away what has been received and not yet taken.
  virtual void SetInBufferCount(std::size_t count) = 0;
  // Sends the bytes as they are. False when the link is down (the channel's LastError() says why).
  virtual bool Output(std::string_view bytes) = 0;
  // Removes and returns what has been received so far; returns at once.
  [[nodiscard]] virtual std::string Input() = 0;
  // How many received bytes are kept until Input() takes them.
  [[nodiscard]] virtual std::size_t InBufferSize() const = 0;

  // Waits until Input() has something to hand out, `span` at most; the surroundings get their turns meanwhile. False
  // when nothing came, and at once where a port cannot wait: whoever has to wait all the same then sleeps.
  [[nodiscard]] virtual bool WaitForInput([[maybe_unused]] Duration span) { return false; }
  // Whether `bytes` are one whole reply to the request in `frame` and nothing else, beyond doubt: of its unit, with all
  // checks, and to no other request. False also where the wire cannot tell.
  [[nodiscard]] virtual bool IsReplyTo([[maybe_unused]] std::string_view frame,
                                       [[maybe_unused]] std::string_view bytes) const {
    return false;
  }
};

}  // namespace kv
