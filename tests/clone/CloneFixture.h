#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "base/Hex.h"
#include "base/PathText.h"
#include "clone/clsDumpPLC.h"
#include "desktop/VirtualPacer.h"
#include "tests/support/FakeChannel.h"
#include "tests/support/LoggedPrompts.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A controller with a segment table and bytes by address. Its n-th exchange can be made to fail.
class CloneChannel : public FakeChannel, private DownloadEngine {
 public:
  CloneChannel() {
    unit = 0x1F;
    version = {"K220-22-R1", "10", "4.60", "19"};
    engine = this;
    byteAt = [](std::uint32_t address) { return static_cast<std::uint8_t>(address / 2); };
  }

  std::function<std::uint8_t(std::uint32_t)> byteAt;
  char state = 'R';
  int failAt = 0;  // this exchange, from 1 on
  int exchanges = 0;
  int status = kBlockDone;  // of block replies

  // "HWF00001000 00000104" (the blank is for the eye) is one segment.
  void SetSegments(const std::vector<std::string>& segments) {
    std::string text = "GI1" + ToHex(static_cast<std::uint32_t>(segments.size()), 4);
    for (const std::string& segment : segments) text += segment;
    std::erase(text, ' ');
    reply = CommandReply{text + "??"};
  }

  std::optional<CommandReply> SendCommand(std::string_view command) override {
    return Answer("SendCommand " + std::string(command), Fails() ? std::nullopt : reply);
  }
  std::optional<VersionInfo> GetVersionInfo(std::uint8_t) override {
    return Answer("GetVersionInfo", Fails() ? std::nullopt : version);
  }
  bool StopController(std::uint8_t) override { return Control("StopController", 'S'); }
  bool RunController(std::uint8_t) override { return Control("RunController", 'R'); }
  std::optional<Bytes> ReadMemoryBlock(std::uint32_t address, std::uint32_t length, std::uint8_t) override {
    Bytes bytes(length);
    for (std::uint32_t i = 0; i < length; ++i) bytes[i] = byteAt(address + i);
    return Answer("Read " + ToHex(address, 8) + " " + std::to_string(length),
                  Fails() ? std::nullopt : std::optional(bytes));
  }

 private:
  bool Fails() { return ++exchanges == failAt; }
  bool Control(std::string call, char newState) {
    succeeds = !Fails();
    if (succeeds) state = newState;
    return Note(std::move(call));
  }
  void SetMessage(const BlockFields& fields) override { mFields = fields; }
  const BlockFields& Message() const override { return mFields; }
  bool Send() override {
    mStateReply = {static_cast<std::uint8_t>(state), 0};
    succeeds = !Fails();
    return Note("State " + std::to_string(mFields.opCode) + "," + std::to_string(mFields.param1) + "," +
                std::to_string(mFields.dataLength) + "," + std::to_string(mFields.param3) + "," +
                std::to_string(mFields.param4));
  }
  bool SendWithData(std::span<const std::uint8_t>) override { return false; }
  const Bytes& ReplyBytes() const override { return mStateReply; }
  int ReplyStatus() const override { return status; }

  BlockFields mFields;
  Bytes mStateReply;
};

// Writes into the log what the engine shows.
class LoggedWindow : public DumpWindow {
 public:
  explicit LoggedWindow(CallLog& log) : mLog(log) {}

  SegmentBoxes boxes;
  std::function<void()> onBar = [] {};  // when the bar is begun anew

  void FillSegments(std::span<const CloneSegment> segments) override {
    std::string codes;
    for (const CloneSegment& segment : segments) codes += " " + segment.code;
    mLog.push_back("Segments" + codes);
  }
  void Event_SegmentIndex(int index) override { mLog.push_back("Segment " + std::to_string(index)); }
  void Event_ProgressBarInit(std::int64_t minimum, std::int64_t maximum) override {
    mLog.push_back("Bar " + std::to_string(minimum) + ".." + std::to_string(maximum));
    onBar();
  }
  void Event_ProgressBarValue(std::int64_t value) override { mLog.push_back("Bar " + std::to_string(value)); }
  void Event_AddWriteCommand(std::string_view line) override { mLog.push_back("Line " + std::string(line)); }
  void Event_Refresh() override { mLog.emplace_back("Refresh"); }
  SegmentBoxes CheckedSegments() const override { return boxes; }

 private:
  CallLog& mLog;
};

inline constexpr const char* kFailed = "Box ( ) Korvantis PLC Cloner: Operation Failed.";

// The engine between its surroundings; all of them write into one log.
struct CloneFixture {
  CloneFixture() {
    pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2026} / 3 / 9} + std::chrono::hours(7));
  }

  // One create or restore by a fresh engine, and what the log then says.
  CloneOutcome Create() {
    channel.calls.clear();
    channel.exchanges = 0;
    clsDumpPLC engine(window, prompts, pacer, pacer);
    running = &engine;
    engine.CreateGhost(channel, file);
    return Recorded(engine.Outcome());
  }
  CloneOutcome Restore(SerialPortObject& port) {
    channel.calls.clear();
    clsDumpPLC engine(window, prompts, pacer, pacer);
    running = &engine;
    engine.RestoreGhost(port, file, &channel);
    return Recorded(engine.Outcome());
  }
  CloneOutcome Recorded(CloneOutcome outcome) const {
    ExpectAsRecorded([&] {
      std::string all;
      for (const std::string& call : channel.calls) all += call + "\n";
      for (const int each : {int(outcome.end), int(outcome.cause), int(outcome.link.code)}) all += std::to_string(each);
      all += " " + outcome.reason + "\nin " + std::to_string(pacer.Now().time_since_epoch().count()) + " us\n";
      return Replaced(WithoutHome(all, folder.Path()), "\r", "\\r");
    });
    return outcome;
  }
  [[nodiscard]] std::string Content() const { return TemporaryFolder::Content(file); }
  [[nodiscard]] bool Exists() const { return std::filesystem::exists(file); }

  TemporaryFolder folder;
  std::filesystem::path file = folder.Path() / "clone.kdf";
  VirtualPacer pacer;
  CloneChannel channel;
  LoggedPrompts prompts{channel.calls};
  LoggedWindow window{channel.calls};
  clsDumpPLC* running = nullptr;
};

}  // namespace kv::test
