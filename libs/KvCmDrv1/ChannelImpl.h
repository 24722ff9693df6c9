#pragma once

#include <fstream>
#include <functional>

#include "KvCmDrv1/BlockEngine.h"
#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/PanelLinkImpl.h"
#include "KvCmDrv1/PieceSize.h"
#include "KvCmDrv1/ProtocolClient.h"
#include "KvCmDrv1/RawPort.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "link/Channel.h"
#include "link/ControllerErrorText.h"
#include "link/PasswordSource.h"

namespace kv {

// The channel over our wire. The text commands and the control of the link stand in ChannelImpl.cpp, typed reads in
// ChannelImplReads.cpp, typed writes in ChannelImplWrites.cpp, memory and block messages in ChannelImplMemory.cpp, what
// the panel needs in ChannelImplPanel.cpp.
//
//   Closed -> Open (Open, OpenLink) -> Closed (Close, settings that need another port)
//   Open -> Lost -> Open            within a request or with the next one, when the settings say so
//   Open -> OtherController         another controller came back: closed for good, until Close
class ChannelImpl final : public Channel {
 public:
  using MakePortOf = std::function<std::unique_ptr<Port>(const LinkSettings& settings)>;
  using Say = std::function<void(const std::string& message)>;

  // `makePort` gives a port for any settings and is not called after Retire.
  ChannelImpl(Pacer& pacer, std::shared_ptr<Trace> trace, const LinkSettings& settings, MakePortOf makePort, Say say);

  // Opens the link; true when it is open already. A modem dials, a listening link waits for its controller.
  [[nodiscard]] bool Open();
  void Close();
  // Closes the link for good: who still holds the channel is told that the link is closed.
  void Retire();
  [[nodiscard]] bool IsOpen() const { return mLine.IsOpen(); }
  [[nodiscard]] bool IsBusy() const { return mIsBusy; }
  [[nodiscard]] bool IsOtherController() const { return mClient.IsOtherController(); }
  [[nodiscard]] const LinkSettings& Settings() const { return mSettings; }
  // Who is asked for passwords; null: nobody.
  void UsePasswords(PasswordSource* source);
  // Who hears of what is no read; null: nobody.
  void ObserveChanges(ChangeObserver* observer);
  // Forgets the passwords that were given, and closes a connection on which one has opened access. It comes back with
  // the next request where the settings say so.
  void ForgetPasswords() { mClient.ForgetPasswords(); }
  // Another operation of a tool begins: a user who did not give the password in the one before is asked again.
  void BeginOperation() override { mClient.BeginOperation(); }

  [[nodiscard]] std::optional<CommandReply> SendCommand(std::string_view command) override;
  void SetCommandOwner(std::string_view owner) override { mTrace->SetOwner(owner); }
  void SetRecordFile(const std::string& path, int purpose) override;
  [[nodiscard]] std::uint8_t UnitID() const override { return mSettings.unit; }
  [[nodiscard]] int TimeOut() const override;
  void SetTimeOut(int milliseconds) override;
  [[nodiscard]] ComParams GetComParams() const override;
  [[nodiscard]] bool SetComParams(const ComParams& params) override;
  [[nodiscard]] bool OpenLink(int commPort, int baudRate) override;
  void SetLinkBusy(bool busy) override { mIsBusy = busy; }
  void AbortComm(bool abort) override { mClient.Abort(abort); }
  [[nodiscard]] int CommPort() const override { return mLine.GetPort().CommPort(); }

  [[nodiscard]] bool StopController(std::uint8_t unit) override;
  [[nodiscard]] bool RunController(std::uint8_t unit) override;
  [[nodiscard]] bool ResetController(std::uint8_t unit) override;
  [[nodiscard]] std::optional<VersionInfo> GetVersionInfo(std::uint8_t unit) override;
  [[nodiscard]] bool GiveAccess(std::string_view password, std::uint8_t unit) override;
  [[nodiscard]] bool EnsureAccess(std::uint8_t unit) override;
  [[nodiscard]] std::optional<ControllerInfo> GetControllerInfo(std::uint8_t unit) override;

  [[nodiscard]] std::optional<std::vector<OperandListValues>> ReadOperandList(
      std::span<const OperandListRequest> records, std::uint8_t unit) override;
  [[nodiscard]] BitValues ReadMB(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] BitValues ReadSB(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] BitValues ReadInputs(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] BitValues ReadOutputs(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] BitValues ReadTimerBits(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] WordValues ReadMI(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] WordValues ReadSI(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] WordValues ReadDBI(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] TimerWords ReadTimerPresets(std::int16_t start, std::int16_t count, std::uint8_t unit) override;
  [[nodiscard]] TimerWords ReadTimerCurrents(std::int16_t start, std::int16_t count, std::uint8_t unit) override;

  [[nodiscard]] bool WriteMB(std::int16_t start, BitSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteXB(std::int16_t start, BitSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteSB(std::int16_t start, BitSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteMI(std::int16_t start, WordSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteDBI(std::int16_t start, WordSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteXI(std::int16_t start, WordSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteML(std::int16_t start, LongSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteXL(std::int16_t start, LongSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteXDW(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteCounterPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteCounterCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteTimerPresets(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteTimerCurrents(std::int16_t start, UnsignedSpan values, std::uint8_t unit) override;
  [[nodiscard]] bool WriteMF(std::int16_t start, FloatWordSpan values, std::uint8_t unit) override;

  [[nodiscard]] std::optional<Bytes> ReadMemoryBlock(std::uint32_t address, std::uint32_t length,
                                                     std::uint8_t unit) override;
  [[nodiscard]] DownloadEngine* GetDownloadEngine() override;
  [[nodiscard]] PanelLink* Panel() override { return &mPanel; }
  [[nodiscard]] SerialPortObject* GetSerialPort() override;
  [[nodiscard]] ChangeObserver* Changes() override { return mLine.Gate().Observer(); }
  [[nodiscard]] const LinkError& LastError() const override { return mError; }
  [[nodiscard]] LinkQuality Quality() const override { return mClient.Quality(); }

  // For the block engine: the reply to one block message, whatever its status; nothing leaves the reason in
  // LastError().
  [[nodiscard]] std::optional<BlockReply> AskBlock(const BlockFields& fields, std::string_view payload);

  // For the panel: a request in the envelope of the controller's family, and its reply's data. Without letters it is
  // for block messages alone.
  struct PanelRequest {
    std::string_view letters;
    BlockFields fields;
    std::string data;
    std::size_t longestReply;  // bytes of data
    std::string_view doing;    // "reading the screen of"
    std::uint8_t unit;
    bool isEvent = false;
    std::optional<unsigned> onlyOn{};
    std::optional<Instant> notAfter{};
  };
  [[nodiscard]] std::optional<PanelTextReply> AskPanel(const PanelRequest& request);
  // How much the trace has; and all since then was a question that is asked again and again, and went well.
  [[nodiscard]] std::uint64_t Traced() const { return mTrace->Total(); }
  void SetPollAside(std::uint64_t traced) { mTrace->SetPollAside(traced); }
  // The data of a reply did not keep to what they have to be.
  void FailPanelReply(std::string_view doing, std::uint8_t unit);
  [[nodiscard]] std::optional<PanelLinkCost> PanelCost(std::uint8_t unit);
  [[nodiscard]] unsigned ConnectionNumber() const { return mLine.ConnectionNumber(); }

  // What is fetched in pieces, smaller ones while the line is bad.
  [[nodiscard]] std::uint32_t BlockPiece() const { return mBlockPiece.Size(); }
  [[nodiscard]] Instant EndOfPieces(std::uint32_t length, std::uint8_t unit) const {
    return mPacer.Now() + mClient.RestartRest(unit) + Longest(1, std::size_t{length} + 100);
  }
  // After a piece of so many bytes has come, or not. False: there is no use in asking for a smaller one.
  [[nodiscard]] bool NoteBlockPiece(bool hasCome, std::uint32_t count, Instant notAfter) {
    return NotePiece(mBlockPiece, hasCome, count, notAfter);
  }

 private:
  [[nodiscard]] bool NotePiece(PieceSize& piece, bool hasCome, std::uint32_t count, Instant notAfter) const;
  [[nodiscard]] std::optional<PanelTextReply> AskPanelInText(const PanelRequest& request);
  [[nodiscard]] std::optional<PanelTextReply> AskPanelInBlock(const PanelRequest& request);
  void TellEventRefusal();
  // What is being done, in words, made only when an error needs it: "reading MI 0..59 from unit 1".
  template <typename Doing>
  [[nodiscard]] std::optional<std::string_view> Ask(const TextRequest& request, const Doing& doing);

  // Whether a status code means that the request was not done; the error then says so.
  template <typename Doing>
  [[nodiscard]] bool FailedStatus(int status, const Doing& doing);

  void Succeed();
  void Fail(LinkError error, const std::string& doing);
  void FailArgument(std::string happened, const std::string& doing);
  void FailRefused(int controllerCode, const std::string& doing);
  void FailMalformed(const std::string& doing);

  [[nodiscard]] std::optional<OperandRange> CheckedRange(std::int32_t code, std::int64_t start, std::int64_t count,
                                                         std::string_view verb);
  // How long an operation may take, the handshake included, that takes so many exchanges with so many bytes in all.
  [[nodiscard]] Duration Longest(std::size_t exchanges, std::size_t bytes) const;
  [[nodiscard]] std::optional<OperandListValues> ReadRange(const OperandRange& range, std::uint8_t unit,
                                                           std::optional<Instant> notAfter = {});
  [[nodiscard]] std::optional<std::vector<OperandListValues>> ReadBlockList(std::span<const OperandRange> ranges,
                                                                            std::uint8_t unit,
                                                                            std::optional<Instant> notAfter);
  template <typename Value>
  [[nodiscard]] std::optional<std::vector<Value>> ReadTyped(std::int32_t code, std::int16_t start, std::int16_t count,
                                                            std::uint8_t unit);
  template <typename Value>
  [[nodiscard]] bool WriteTyped(std::int32_t code, std::int16_t start, std::span<const Value> values,
                                std::uint8_t unit);
  [[nodiscard]] bool Control(std::string_view command, const char* verb, std::uint8_t unit);
  [[nodiscard]] bool ReadPiece(bool isAsciiOnly, std::uint32_t address, std::span<std::uint8_t> bytes,
                               std::uint8_t unit, Instant notAfter);
  [[nodiscard]] std::expected<void, LinkError> OpenLine();
  [[nodiscard]] bool UseSettings(const LinkSettings& settings);
  void ConfigureClient();
  void Tell(const std::string& message);
  void OnRawOutcome(ExchangeOutcome outcome, const RawTraffic& traffic);
  void NoteRawReset(std::string_view sent);
  [[nodiscard]] bool Knows(const std::expected<void, LinkError>& recognised, const std::string& doing);

  Pacer& mPacer;
  std::shared_ptr<Trace> mTrace;
  LinkSettings mSettings;
  MakePortOf mMakePort;
  Say mSay;
  Line mLine;
  ProtocolClient mClient;
  RawPort mRawPort;
  BlockEngine mBlockEngine;
  PanelLinkImpl mPanel;
  RequestWriter mWriter;
  std::vector<std::uint32_t> mNumbers;  // of the write under way
  PieceSize mTextPiece{512};
  PieceSize mBlockPiece{kMostMemoryPerRead};
  PasswordSource* mPasswords = nullptr;
  LinkError mError;
  std::ofstream mRecord;
  int mMode = 0;
  bool mIsBusy = false;
  bool mIsRetired = false;
  // The last raw frame told a unit to reset.
  struct RawReset {
    std::uint8_t unit;
    std::string text;
    ProtocolClient::Patience before;
    std::string received;  // since then

    bool IsRefusedBy(std::string_view bytes);  // and what came before them
  };
  std::optional<RawReset> mRawReset;
};

template <typename Doing>
std::optional<std::string_view> ChannelImpl::Ask(const TextRequest& request, const Doing& doing) {
  const std::expected<std::string_view, LinkError> reply = mClient.SendText(request);
  if (!reply) {
    Fail(reply.error(), doing());
    return std::nullopt;
  }
  if (const std::optional<int> code = ReadRefusal(*reply, request.text)) {
    FailRefused(*code, doing());
    return std::nullopt;
  }
  return *reply;
}

template <typename Doing>
bool ChannelImpl::FailedStatus(int status, const Doing& doing) {
  if (status == kBlockDone) return false;
  if (status == kBlockBusy || status > kBlockRefused) {
    FailRefused(status == kBlockBusy ? kBusyCode : status - kBlockRefused, doing());
  } else {
    FailMalformed(doing());
  }
  return true;
}

// "MI 0..59".
[[nodiscard]] std::string RangeText(const OperandRange& range);

}  // namespace kv
