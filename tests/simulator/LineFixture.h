#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "simulator/Seal.h"
#include "simulator/SimulatedController.h"

namespace sim::test {

using namespace std::chrono_literals;

// A controller of three commands that keeps count of what reached it. "W?x" stores x, "R?"
// tells what is stored, "G?" opens access, and every reply tells whether the connection has it.
class FakeController : public Controller {
 public:
  void Advance(kv::Instant) override {}
  TextReply ExecuteText(std::string_view text, ConnectionAccess& connection) override {
    executed.emplace_back(text);
    if (text.front() == 'W' && !lying) stored = text.substr(2);
    if (text.front() == 'G') connection.hasAccess = true;
    TextReply reply;
    reply.text = std::string(text.substr(0, 2)) + (connection.hasAccess ? "+" : "-");
    if (text.front() == 'R') reply.text += stored;
    reply.changesNothing = text.front() == 'R';
    reply.resets = text == "CCE";
    if (text == "CPSR0007") reply.newBaud = 9600;
    return reply;
  }
  void Restart() override { executed.emplace_back("restart"); }
  BlockReply ExecuteBlock(const BlockRequest&, ConnectionAccess&) override { return {}; }
  bool UnderstandsBlocks() const override { return true; }
  std::uint8_t Unit() const override { return 1; }
  void SetLying(bool isLying) override { lying = isLying; }
  std::expected<void, std::string> SaveState() override { return {}; }

  std::vector<std::string> executed;
  std::string stored;
  bool lying = false;
};

// The fake controller behind real lines, with a clock of its own.
struct LineFixture {
  explicit LineFixture(std::vector<std::string> faults = {}, int baud = 0) {
    SimulatorOptions options;
    options.faults = std::move(faults);
    options.baud = baud;
    options.powerUp = 7;
    auto fake = std::make_unique<FakeController>();
    controller = fake.get();
    simulated = SimulatedController::CreateAround(std::move(fake), options).value();
    line = simulated->NewLine();
    EXPECT_TRUE(line->Connect(now));
  }

  // What comes back on `over` from now on until nothing is on its way or `limit` has passed; moves the clock along.
  std::string Hear(kv::InProcessLine& over, kv::Duration limit = 10s) {
    const kv::Instant end = now + limit;
    std::string heard = over.Read(now);
    for (auto next = over.NextEvent(); next && *next <= end; next = over.NextEvent()) {
      now = std::max(now, *next);
      heard += over.Read(now);
    }
    return heard;
  }
  std::string Say(std::string_view bytes) {
    line->Write(bytes, now);
    return Hear(*line);
  }
  // The reply to a text, checked and without its seal.
  std::string Ask(std::string_view text) {
    const std::string bytes = Say(EncodeFrame(1, text));
    if (bytes.empty()) return bytes;
    const auto frame = DecodeFrame(bytes);
    if (!frame || frame->text.size() < 12) return "no frame: " + bytes;
    const std::string reply(frame->text.substr(0, frame->text.size() - 12));
    const auto counter = std::stoul(std::string(frame->text.substr(reply.size(), 4)), nullptr, 16);
    const bool isSealed = bytes == EncodeReply(frame->unit, text, reply, static_cast<std::uint16_t>(counter));
    return isSealed ? reply : "bad seal: " + bytes;
  }

  FakeController* controller = nullptr;
  std::unique_ptr<SimulatedController> simulated;
  std::unique_ptr<kv::InProcessLine> line;
  kv::Instant now{1h};
};

}  // namespace sim::test
