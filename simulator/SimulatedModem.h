#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/InProcessLine.h"

namespace sim {

// What becomes of a call.
enum class DialResult { Connect, Busy, NoCarrier, NoDialTone, NoAnswer };

// How a modem answers commands by the profile that a reset brings back.
enum class ModemAnswers { Words, Numbers, None };

struct ModemOptions {
  DialResult result = DialResult::Connect;
  ModemAnswers answers = ModemAnswers::Words;
  kv::Duration dialTime = std::chrono::seconds(1);  // from the dialling to its result
};

// A modem with a controller behind the telephone line: the near end of it, as the serial line to the modem sees it.
//
// States: command -> dialling (ATD) -> online -> escaped ("+++" with a second of silence around it) -> online (ATO) or
// command (ATH). A character while dialling calls it off; the controller's end of the connection is NO CARRIER.
//
// Of the commands it knows D, E, H, O, Q, V, Z and &F, several of them in one line, and answers OK to all others.
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
  struct ResultCode;

  void Advance(kv::Instant now);
  void EndDialling(kv::Instant now);
  void TakeCommandByte(char byte, kv::Instant now);
  void Execute(std::string_view line, kv::Instant now);
  void Dial(std::string_view number, kv::Instant now);
  void Set(char letter, bool isOn, kv::Instant now);
  void UseProfile(ModemAnswers answers);
  void WatchForEscape(std::string_view bytes, kv::Instant now);
  void HangUp(kv::Instant now);
  void Answer(ResultCode code);

  std::unique_ptr<kv::InProcessLine> mController;
  ModemOptions mOptions;
  bool mIsConnected = false;
  State mState = State::Command;
  bool mEchoes = true;
  bool mIsQuiet = false;
  bool mUsesNumbers = false;
  std::string mCommand;                  // of the line under way
  std::string mOut;                      // answers not yet read
  std::optional<kv::Instant> mDue;       // the dialling ends, or the silence behind "+++" has lasted
  std::optional<kv::Instant> mLastByte;  // sent by the near end while online
  int mPluses = 0;                       // of an escape under way
};

}  // namespace sim
