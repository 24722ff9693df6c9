#pragma once

#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/Time.h"
#include "simulator/BlockMessage.h"
#include "simulator/Controller.h"
#include "simulator/Faults.h"
#include "simulator/Seal.h"

namespace sim {

// What a connection to a controller is made of, as far as the controller's side goes.
struct ClientState {
  struct AnsweredBlock {
    std::uint16_t sequence = 0;
    std::uint32_t crc = 0;  // of the request
    BlockReply reply;
  };

  ConnectionAccess connection;
  std::uint64_t resetsSeen = 0;
  std::optional<AnsweredBlock> lastBlock;
};

// The one place of a simulated controller where all its lines come together: it keeps what is the controller's and not
// a connection's (request counter, last request that SY names, reset, line speed, faults), and turns sound requests
// into the bytes of their replies.
class RequestHandler {
 public:
  struct Answer {
    std::string bytes;
    std::optional<int> newBaud;  // from after the reply on
    bool resets = false;         // after the reply
  };

  RequestHandler(std::unique_ptr<Controller> controller, Faults faults, const SimulatorOptions& options);

  [[nodiscard]] Answer AnswerText(const AsciiFrame& request, ClientState& client, const FaultPlan& plan,
                                  kv::Instant now);
  [[nodiscard]] std::string AnswerBlock(const BlockMessage& request, ClientState& client, const FaultPlan& plan,
                                        kv::Instant now);

  // Power fails and comes back: what was going on is cut short, the counter and what SY names begin anew, nothing is
  // answered for a while, and every connection loses its access and its last block message.
  void Restart(kv::Instant now);
  // After a reply that has made the controller reset: nothing is answered for a while and every connection loses its
  // access and its last block message.
  void BeginReset(kv::Instant now);
  // Takes no connection until then.
  void StayAwayUntil(kv::Instant until) { mAwayUntil = until; }

  [[nodiscard]] bool AnswersAt(kv::Instant now) const { return now >= mResetUntil; }
  [[nodiscard]] bool TakesConnectionsAt(kv::Instant now) const { return now >= mAwayUntil; }

  // The line speed from now on, until the reset.
  void SetBaud(int baud) { mBaud = baud; }
  [[nodiscard]] int Baud() const { return mBaud; }            // 0: it hears every speed
  [[nodiscard]] int UsualBaud() const { return mUsualBaud; }  // 0: it hears every speed, and bytes take no time

  [[nodiscard]] Faults& FaultRules() { return mFaults; }
  void UseFaults(Faults faults) { mFaults = std::move(faults); }
  [[nodiscard]] Controller& TheController() { return *mController; }
  [[nodiscard]] const Controller& TheController() const { return *mController; }
  [[nodiscard]] std::uint64_t Seed() const { return mSeed; }

 private:
  // The last request other than a read, as SY tells it.
  struct LastRequest {
    std::uint16_t counter = 0;
    std::uint32_t crc = 0;
    std::string reply;
  };

  [[nodiscard]] TextReply Execute(std::string_view text, ConnectionAccess& connection, const FaultPlan& plan);
  [[nodiscard]] TextReply AnswerSync(std::string_view text) const;
  [[nodiscard]] BlockReply Execute(const BlockMessage& request, ConnectionAccess& connection, const FaultPlan& plan);
  void Advance(kv::Instant now);
  void Attend(ClientState& client, kv::Instant now);

  std::unique_ptr<Controller> mController;
  Faults mFaults;
  std::uint64_t mSeed;
  int mUsualBaud;
  int mBaud;
  kv::Duration mRestartTime;
  std::uint16_t mPowerUp;
  std::uint16_t mCounter = 0;
  LastRequest mLast;
  std::uint64_t mResets = 0;
  kv::Instant mNow;
  kv::Instant mResetUntil = kv::Instant::min();
  kv::Instant mAwayUntil = kv::Instant::min();
};

}  // namespace sim
