#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/InProcessLine.h"

namespace sim {

// What becomes of a call.
enum class DialResult { Connect, Busy, NoCarrier, NoDialTone, NoAnswer };

struct ModemOptions {
  DialResult result = DialResult::Connect;
  kv::Duration dialTime = std::chrono::seconds(1);  // from the dialling to its result
};

// A modem with a controller behind the telephone line: the near end of it, as the serial line to the modem sees it.
//
// States: command -> dialling (ATD) -> online -> escaped ("+++" with a second of silence around it) -> online (ATO) or
// command (ATH). A character while dialling calls it off; the controller's end of the connection is NO CARRIER.
class SimulatedModem final : public kv::InProcessLine {
 public:
  SimulatedModem(std::unique_ptr<kv::InProcessLine> controller, const ModemOptions& options);

  [[nodiscard]] bool Connect(kv::Instant now) override;
  void Disconnect(kv::Instant now) override;
  [[nodiscard]] bool IsConnected() const override { return mIsConnected; }
  void Write(std::string_view bytes, kv::Instant now) override;
  [[nodiscard]] std::string Read(kv::Instant now) override;
  [[nodiscard]] std::optional<kv::Instant> NextEvent() const override;

 private:
  enum class State { Command, Dialling, Online, Escaped };

  void Advance(kv::Instant now);
  void EndDialling(kv::Instant now);
  void TakeCommandByte(char byte, kv::Instant now);
  void Execute(std::string command, kv::Instant now);
  void WatchForEscape(std::string_view bytes, kv::Instant now);
  void HangUp(kv::Instant now);
  void Answer(std::string_view text);

  std::unique_ptr<kv::InProcessLine> mController;
  ModemOptions mOptions;
  bool mIsConnected = false;
  State mState = State::Command;
  bool mEchoes = true;
  std::string mCommand;                  // of the line under way
  std::string mOut;                      // answers not yet read
  std::optional<kv::Instant> mDue;       // the dialling ends, or the silence behind "+++" has lasted
  std::optional<kv::Instant> mLastByte;  // sent by the near end while online
  int mPluses = 0;                       // of an escape under way
};

}  // namespace sim
