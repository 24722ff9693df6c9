#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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
};

}  // namespace kv
