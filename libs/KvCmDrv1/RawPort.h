#pragma once

#include <functional>
#include <string>

#include "KvCmDrv1/Line.h"
#include "link/SerialPortObject.h"

namespace kv {

// The port under the channel, for raw traffic. What happens to the line is told to `onOutcome`: the channel keeps the
// reason of a failure, and its exchanges find step again afterwards.
class RawPort final : public SerialPortObject {
 public:
  static constexpr std::size_t kInBuffer = 8192;

  RawPort(Pacer& pacer, Line& line, std::function<void(Outcome outcome)> onOutcome);

  void SetInBufferCount(std::size_t count) override;
  bool Output(std::string_view bytes) override;
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] std::size_t InBufferSize() const override { return kInBuffer; }
  [[nodiscard]] bool WaitForInput(Duration span) override;
  [[nodiscard]] bool IsReplyTo(std::string_view frame, std::string_view bytes) const override;

 private:
  Pacer& mPacer;
  Line& mLine;
  std::function<void(Outcome outcome)> mOnOutcome;
  std::string mWaiting;  // received, and not yet taken
};

}  // namespace kv
