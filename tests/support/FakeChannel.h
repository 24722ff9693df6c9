#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "link/Channel.h"

namespace kv::test {

// A channel without a controller. Every call is written into `calls`; it fails with `error` unless the test has
// put an answer for it below. A test that needs more derives from it and overrides the calls that it is about.
class FakeChannel : public Channel {
 public:
  std::vector<std::string> calls;                       // "ReadMB 0 10 @1": name, start and count, unit
  std::function<bool(const std::string& call)> onCall;  // sees each call; false fails it
  LinkError error{.code = LinkErrorCode::NoReply, .doing = "asking", .happened = "no reply", .cause = "", .cure = ""};

  std::uint8_t unit = 1;
  int timeOut = 1000;
  ComParams params{.link = "fake", .baudRate = 115200};
  bool succeeds = false;  // what calls with nothing to hand back answer, writes among them
  std::optional<CommandReply> reply;
  std::optional<VersionInfo> version;
  std::optional<ControllerInfo> info;
  std::optional<std::vector<OperandListValues>> lists;
  BitValues bits;
  WordValues words;
  TimerWords timerWords;
  std::optional<Bytes> memory;
  DownloadEngine* engine = nullptr;
  SerialPortObject* port = nullptr;

  std::optional<CommandReply> SendCommand(std::string_view command) override {
    return Answer("SendCommand " + std::string(command), reply);
  }
  void BeginOperation() override {}
  void SetCommandOwner(std::string_view owner) override { Note("SetCommandOwner " + std::string(owner)); }
  void SetRecordFile(const std::string& path, int purpose) override {
    Note("SetRecordFile " + path + " " + std::to_string(purpose));
  }
  std::uint8_t UnitID() const override { return unit; }
  int TimeOut() const override { return timeOut; }
  void SetTimeOut(int milliseconds) override { timeOut = milliseconds; }
  ComParams GetComParams() const override { return params; }
  bool SetComParams(const ComParams& newParams) override {
    params = newParams;
    return Note("SetComParams " + params.link);
  }
  bool OpenLink(int commPort, int baudRate) override {
    return Note("OpenLink " + std::to_string(commPort) + " " + std::to_string(baudRate));
  }
  void SetLinkBusy(bool busy) override { Note(busy ? "LinkBusy on" : "LinkBusy off"); }
  void AbortComm(bool abort) override { Note(abort ? "AbortComm on" : "AbortComm off"); }
  int CommPort() const override { return 0; }
  bool StopController(std::uint8_t u) override { return Note("StopController" + At(u)); }
  bool RunController(std::uint8_t u) override { return Note("RunController" + At(u)); }
  bool ResetController(std::uint8_t u) override { return Note("ResetController" + At(u)); }
  std::optional<VersionInfo> GetVersionInfo(std::uint8_t u) override {
    return Answer("GetVersionInfo" + At(u), version);
  }
  bool EnsureAccess(std::uint8_t u) override { return Note("EnsureAccess" + At(u)); }
  bool GiveAccess(std::string_view password, std::uint8_t u) override {
    return Note("GiveAccess " + std::string(password) + At(u));
  }
  std::optional<ControllerInfo> GetControllerInfo(std::uint8_t u) override {
    return Answer("GetControllerInfo" + At(u), info);
  }
  std::optional<std::vector<OperandListValues>> ReadOperandList(std::span<const OperandListRequest> records,
                                                                std::uint8_t u) override {
    std::string call = "ReadOperandList" + At(u) + ":";
    for (const auto& record : records) {
      call += " " + std::to_string(record.reserved) + "," + std::to_string(record.driverTypeCode) + "," +
              std::to_string(record.start) + "," + std::to_string(record.count) + "," +
              std::to_string(record.reservedEnd);
    }
    return Answer(std::move(call), lists);
  }

  using Int16 = std::int16_t;
  using Unit = std::uint8_t;
  BitValues ReadMB(Int16 s, Int16 n, Unit u) override { return Read("ReadMB", s, n, u, bits); }
  BitValues ReadSB(Int16 s, Int16 n, Unit u) override { return Read("ReadSB", s, n, u, bits); }
  BitValues ReadInputs(Int16 s, Int16 n, Unit u) override { return Read("ReadInputs", s, n, u, bits); }
  BitValues ReadOutputs(Int16 s, Int16 n, Unit u) override { return Read("ReadOutputs", s, n, u, bits); }
  BitValues ReadTimerBits(Int16 s, Int16 n, Unit u) override { return Read("ReadTimerBits", s, n, u, bits); }
  WordValues ReadMI(Int16 s, Int16 n, Unit u) override { return Read("ReadMI", s, n, u, words); }
  WordValues ReadSI(Int16 s, Int16 n, Unit u) override { return Read("ReadSI", s, n, u, words); }
  WordValues ReadDBI(Int16 s, Int16 n, Unit u) override { return Read("ReadDBI", s, n, u, words); }
  TimerWords ReadTimerPresets(Int16 s, Int16 n, Unit u) override {
    return Read("ReadTimerPresets", s, n, u, timerWords);
  }
  TimerWords ReadTimerCurrents(Int16 s, Int16 n, Unit u) override {
    return Read("ReadTimerCurrents", s, n, u, timerWords);
  }
  bool WriteMB(Int16 s, BitSpan v, Unit u) override { return Write("WriteMB", s, v, u); }
  bool WriteXB(Int16 s, BitSpan v, Unit u) override { return Write("WriteXB", s, v, u); }
  bool WriteSB(Int16 s, BitSpan v, Unit u) override { return Write("WriteSB", s, v, u); }
  bool WriteMI(Int16 s, WordSpan v, Unit u) override { return Write("WriteMI", s, v, u); }
  bool WriteDBI(Int16 s, WordSpan v, Unit u) override { return Write("WriteDBI", s, v, u); }
  bool WriteXI(Int16 s, WordSpan v, Unit u) override { return Write("WriteXI", s, v, u); }
  bool WriteML(Int16 s, LongSpan v, Unit u) override { return Write("WriteML", s, v, u); }
  bool WriteXL(Int16 s, LongSpan v, Unit u) override { return Write("WriteXL", s, v, u); }
  bool WriteDW(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteDW", s, v, u); }
  bool WriteXDW(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteXDW", s, v, u); }
  bool WriteCounterPresets(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteCounterPresets", s, v, u); }
  bool WriteCounterCurrents(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteCounterCurrents", s, v, u); }
  bool WriteTimerPresets(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteTimerPresets", s, v, u); }
  bool WriteTimerCurrents(Int16 s, UnsignedSpan v, Unit u) override { return Write("WriteTimerCurrents", s, v, u); }
  bool WriteMF(Int16 s, FloatWordSpan v, Unit u) override { return Write("WriteMF", s, v, u); }
  std::optional<Bytes> ReadMemoryBlock(std::uint32_t address, std::uint32_t length, Unit u) override {
    return Answer("ReadMemoryBlock " + std::to_string(address) + " " + std::to_string(length) + At(u), memory);
  }
  DownloadEngine* GetDownloadEngine() override { return engine; }
  SerialPortObject* GetSerialPort() override { return port; }
  const LinkError& LastError() const override { return mLastError; }
  LinkQuality Quality() const override { return {}; }

 protected:
  // Notes the call; its result is what the call answers, and sets the last error.
  bool Note(std::string call) { return Finish(std::move(call), succeeds); }
  template <typename Value>
  std::optional<Value> Answer(std::string call, const std::optional<Value>& answer) {
    return Finish(std::move(call), answer.has_value()) ? answer : std::nullopt;
  }

 private:
  bool Finish(std::string call, bool isGood) {
    isGood = (!onCall || onCall(call)) && isGood;
    calls.push_back(std::move(call));
    mLastError = isGood ? LinkError() : error;
    return isGood;
  }
  static std::string At(std::uint8_t u) { return " @" + std::to_string(u); }

  template <typename Values>
  Values Read(std::string_view name, Int16 start, Int16 count, Unit u, const Values& answer) {
    return Answer(std::string(name) + " " + std::to_string(start) + " " + std::to_string(count) + At(u), answer);
  }
  template <typename Value>
  bool Write(std::string_view name, Int16 start, std::span<const Value> values, Unit u) {
    return Note(std::string(name) + " " + std::to_string(start) + " " + std::to_string(values.size()) + At(u));
  }

  LinkError mLastError;
};

}  // namespace kv::test
