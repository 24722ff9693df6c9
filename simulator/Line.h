#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/InProcessLine.h"
#include "simulator/FrameReader.h"
#include "simulator/LineTiming.h"
#include "simulator/RequestHandler.h"

namespace sim {

// One client's line to a simulated controller: bytes cross it at the line's speed, good requests for this controller's
// unit id are answered, everything else is met with silence, and faults happen where the rules say so. What one end
// sends at another speed than the other end is set to arrives as noise; a client without a speed, as on TCP, hears and
// is heard always, at the controller's usual speed.
class Line : public kv::InProcessLine {
 public:
  explicit Line(std::shared_ptr<RequestHandler> handler);

  [[nodiscard]] bool Connect(kv::Instant now) override;
  void Disconnect(kv::Instant now) override;
  [[nodiscard]] bool IsConnected() const override { return mConnected; }
  void SetBaud(int baud) override { mClientBaud = baud; }
  void Write(std::string_view bytes, kv::Instant now) override;
  [[nodiscard]] std::string Read(kv::Instant now) override;
  [[nodiscard]] std::optional<kv::Instant> NextEvent() const override;

 private:
  // Lets everything happen that is due on the controller's side until `now`.
  void Run(kv::Instant now);
  void HandleMessages(kv::Instant now);
  void Handle(const FrameReader::Message& message, kv::Instant now);
  [[nodiscard]] bool IsForUs(const FrameReader::Message& message) const;
  // True when a fault has kept the request from being executed.
  [[nodiscard]] bool IsStopped(const FrameReader::Message& message, const FaultPlan& plan, kv::Instant now);
  void Answer(const FrameReader::Message& message, const FaultPlan& plan, kv::Instant now);
  // Sends a reply with the faults of the plan.
  void Send(std::string reply, std::string_view request, const FaultPlan& plan, kv::Instant now);
  void SendToClient(std::string bytes, kv::Instant from, kv::Duration gap);
  // How fast bytes arrive at an end that is set to `baud`.
  [[nodiscard]] Pace PaceAt(int baud) const;
  void Cut(const FaultPlan& plan, kv::Instant at);
  void Drop();

  std::shared_ptr<RequestHandler> mHandler;
  FrameReader mReader;
  Wire mToController;
  Wire mToClient;
  ClientState mClient;
  int mClientBaud = 0;
  bool mConnected = false;
  std::optional<kv::Instant> mCutAt;  // the link is lost then
  std::uint64_t mAlreadyDamaged = 0;  // requests that begin before this place in the stream have had their damage
};

}  // namespace sim
