#pragma once

#include <functional>
#include <string>

#include "KvCmDrv1/Line.h"
#include "link/SerialPortObject.h"

namespace kv {

// What raw traffic has just passed on: the bytes that were to be sent, or those that are handed out.
struct RawTraffic {
  std::string_view sent = {};
  std::string_view received = {};
};

// The port under the channel, for raw traffic. What happens to the line is told to `onTraffic`: the channel keeps the
// reason of a failure, and its handshake with the controller is repeated afterwards.
class RawPort final : public SerialPortObject {
 public:
  static constexpr std::size_t kInBuffer = 8192;
  using OnTraffic = std::function<void(ExchangeOutcome outcome, const RawTraffic& traffic)>;

  RawPort(Pacer& pacer, Line& line, OnTraffic onTraffic);

  void SetInBufferCount(std::size_t count) override;
  bool Output(std::string_view bytes) override;
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] std::size_t InBufferSize() const override { return kInBuffer; }
  [[nodiscard]] bool WaitForInput(Duration span) override;
  [[nodiscard]] bool IsReplyTo(std::string_view frame, std::string_view bytes) const override;

 private:
  Pacer& mPacer;
  Line& mLine;
  OnTraffic mOnTraffic;
  std::string mWaiting;  // received, and not yet taken
};

}  // namespace kv
