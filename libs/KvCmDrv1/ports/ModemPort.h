#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/Port.h"
#include "desktop/Pacer.h"

namespace kv {

// A modem on another port: set up, dialled and hung up with AT commands, a plain line between.
class ModemPort final : public Port {
 public:
  // `line`: the port that the modem is on. `pacer` must outlive this port.
  ModemPort(std::unique_ptr<Port> line, ModemSettings settings, Pacer& pacer);
  ~ModemPort() override;

  // Ends at `limit` or, when that comes first, with the time for dialling of the settings.
  [[nodiscard]] std::expected<void, PortError> Open(Duration limit) override;
  // Hangs up first, which takes two seconds with a modem that is well; not after a stop request, when only the closing
  // line drops the call.
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return mIsOnline; }
  [[nodiscard]] Result Write(std::string_view& bytes, Duration slice) override;
  // "NO CARRIER" with silence behind it is the loss of the connection.
  [[nodiscard]] Result Read(std::string& buffer, Duration slice) override;
  [[nodiscard]] const PortError& LossReason() const override { return mLoss; }
  [[nodiscard]] Duration ByteTime() const override { return mLine->ByteTime(); }
  [[nodiscard]] bool SetBaudRate(int baudRate) override { return mIsOnline && mLine->SetBaudRate(baudRate); }
  [[nodiscard]] std::string Description() const override;
  [[nodiscard]] int CommPort() const override { return mLine->CommPort(); }

 private:
  enum class Answer {
    Awaited,
    Busy,
    NoCarrier,
    NoDialTone,
    NoAnswer,
    Error,
    Number,        // a code in digits, in place of a word
    Silence,       // to the first commands: perhaps there is no modem
    LaterSilence,  // to one after them
    Stopped,
    Lost
  };
  struct AnswerText;

  [[nodiscard]] std::optional<PortError> SetUpAndDial(Instant deadline);
  [[nodiscard]] std::optional<PortError> SetUp(Instant deadline);
  [[nodiscard]] Answer Wake(Instant deadline);
  [[nodiscard]] Answer Command(const std::string& command, Instant deadline);
  [[nodiscard]] Answer Ask(const std::string& command, std::string_view awaited, Duration limit);
  [[nodiscard]] bool Send(std::string_view bytes, Instant deadline);
  [[nodiscard]] Answer AwaitLine(std::string_view awaited, Instant deadline);
  [[nodiscard]] std::optional<std::string> TakeLine();
  void Note(Side side, std::string_view bytes) const;
  [[nodiscard]] PortError ErrorOf(Answer answer, const std::string& subject) const;
  void HangUp();
  [[nodiscard]] Result Lose(PortError reason);
  [[nodiscard]] Result Listen(std::string& buffer, Duration slice);
  void WatchForCarrierLoss(std::string_view bytes);

  std::unique_ptr<Port> mLine;
  ModemSettings mSettings;
  Pacer& mPacer;
  bool mIsOnline = false;
  std::string mReceived;              // from the modem, not yet taken; while online, what Read has still to hand over
  std::string mTail;                  // the last bytes of the data, where a "NO CARRIER" may have begun
  std::optional<Instant> mLossHeard;  // when the data ended with "NO CARRIER"; nothing has come since
  PortError mLoss;
};

}  // namespace kv
