#pragma once

#include <functional>
#include <string>

#include "KvCmDrv1/Line.h"
#include "link/SerialPortObject.h"

namespace kv {

// The port under the channel, for raw traffic. What happens to the line is told to `onOutcome`, with the bytes that
// were to be sent: the channel keeps the reason of a failure, and its exchanges meet the controller again afterwards.
class RawPort final : public SerialPortObject {
 public:
  static constexpr std::size_t kInBuffer = 8192;
  using OnOutcome = std::function<void(Outcome outcome, std::string_view sent)>;

  RawPort(Pacer& pacer, Line& line, OnOutcome onOutcome);

  void SetInBufferCount(std::size_t count) override;
  bool Output(std::string_view bytes) override;
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] std::size_t InBufferSize() const override { return kInBuffer; }
  [[nodiscard]] bool WaitForInput(Duration span) override;
  [[nodiscard]] bool IsReplyTo(std::string_view frame, std::string_view bytes) const override;

 private:
  Pacer& mPacer;
  Line& mLine;
  OnOutcome mOnOutcome;
  std::string mWaiting;  // received, and not yet taken
};

}  // namespace kv
