#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/ports/Port.h"
#include "desktop/VirtualPacer.h"

namespace kv {

// What goes wrong with one request.
enum class Fault {
  None,
  NotHeard,    // the request is lost on its way
  NoReply,     // executed; the reply is lost
  Late,        // executed; the reply comes behind everybody's patience for one try
  Doubled,     // the reply comes twice
  Dribbled,    // the reply comes a byte every 2 ms
  Cut,         // half the reply
  Damaged,     // two characters of the reply changed so that the frame's own check still holds
  WrongUnit,   // another unit's reply
  Echo,        // the request comes back before the reply
  OldReply,    // the reply to the request before comes first
  Garbage,     // endless noise instead of a reply
  Refused,     // code 0A
  Restarted,   // power-up between the execution and the reply, which is lost
  LostBefore,  // the link breaks, the request unexecuted
  LostAfter,   // executed, then the link breaks
};

// A controller of a few commands at the other end of a port, written from the protocol page alone, that counts what it
// executes and goes wrong as it is told. It lives on the pacer's clock.
class FakeController {
 public:
  explicit FakeController(VirtualPacer& pacer) : mPacer(pacer) {}

  // What happens to the request `text` ("block 257 512" for a block message with DataLength 512); asked once for each.
  std::function<Fault(const std::string& text)> faultOf = [](const std::string&) { return Fault::None; };
  std::string model = "K220-22-R1";
  std::uint32_t serial = 0x12345678;
  std::string password;  // needed for CC.. and WO; empty: none
  std::function<std::string()> listPayload = [] { return std::string(); };
  bool isReachable = true;
  std::uint8_t memoryXor = 0;  // memory reads as its address' low byte, exclusive-or this

  std::vector<std::string> executed;         // texts, tags and all, in order
  std::map<std::string, int> timesExecuted;  // by text without tag and check, reads aside
  int connections = 0;

  // The wire.
  bool Connect();
  void Arrive(std::string_view bytes);
  std::string Take();
  [[nodiscard]] std::optional<Instant> NextEvent() const;
  [[nodiscard]] bool IsConnected() const { return mIsConnected; }
  void CutLink() { mIsConnected = false; }
  void PowerUp();

 private:
  void HandleFrame(const std::string& frame);
  void HandleBlock(const std::string& message);
  void Deliver(Fault fault, const std::string& request, const std::string& reply);
  [[nodiscard]] std::string Execute(const std::string& text);
  [[nodiscard]] std::string FrameOf(const std::string& requestText, const std::string& replyText, std::uint8_t unit);

  void Push(Duration delay, std::string bytes) { mOut.emplace_back(mPacer.Now() + delay, std::move(bytes)); }

  VirtualPacer& mPacer;
  std::string mIn;
  std::deque<std::pair<Instant, std::string>> mOut;
  std::string mPreviousReply;
  std::string mLastBlock, mLastBlockReply;
  std::uint16_t mCounter = 0;
  std::uint16_t mPowerUp = 0;
  std::string mLastWrite = "0000000000000000";  // counter(4) check(8) power-up(4) reply of SY
  bool mIsConnected = false;
  bool mHasAccess = false;
  bool mIsGarbage = false;
};

// The port to it.
class FakePort final : public Port {
 public:
  FakePort(FakeController& controller, VirtualPacer& pacer) : mController(controller), mPacer(pacer) {}

  std::expected<void, PortError> Open(Duration limit) override;
  void Close() override { mIsOpen = false; }
  bool IsOpen() const override { return mIsOpen; }
  Result Write(std::string_view& bytes, Duration slice) override;
  Result Read(std::string& buffer, Duration slice) override;
  const PortError& LossReason() const override { return mLoss; }
  Duration ByteTime() const override { return Duration(87); }  // 115200 baud
  bool SetBaudRate(int) override { return true; }
  std::string Description() const override { return "the fake line"; }

 private:
  FakeController& mController;
  VirtualPacer& mPacer;
  bool mIsOpen = false;
  PortError mLoss{"it was cut", "the test", "none"};
};

}  // namespace kv
