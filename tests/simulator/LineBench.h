#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "simulator/BlockMessage.h"
#include "simulator/Seal.h"
#include "simulator/SimulatedController.h"

namespace sim::test {

using namespace std::chrono_literals;

// A controller of three commands and one block operation that keeps count of what reached it. "W?x" stores x, "R?"
// tells what is stored, "G?" opens access, and every reply tells whether the connection has it.
class FakeController : public Controller {
 public:
  void Advance(kv::Instant now) override { lastAdvance = now; }
  TextReply ExecuteText(std::string_view text, Connection& connection) override {
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
  BlockReply ExecuteBlock(const BlockRequest& request, Connection&) override {
    executed.push_back("block " + std::string(request.payload));
    return {10, "done " + std::to_string(executed.size())};
  }
  bool UnderstandsBlocks() const override { return true; }
  std::uint8_t Unit() const override { return 1; }
  void SetLying(bool isLying) override { lying = isLying; }
  std::expected<void, std::string> SaveState() override { return {}; }

  std::vector<std::string> executed;
  std::string stored;
  bool lying = false;
  kv::Instant lastAdvance;
};

// The fake controller behind real lines, with a clock of its own.
struct LineBench {
  explicit LineBench(std::vector<std::string> faults = {}, int baud = 0) {
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

  static std::string Block(std::uint16_t sequence, std::string_view payload, std::uint8_t unit = 1) {
    BlockMessage message;
    message.unit = unit;
    message.sequence = sequence;
    message.payload = payload;
    return EncodeBlock(message);
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
  // The reply to a text, checked and without its seal; its counter is kept.
  std::string Ask(std::string_view text) {
    const std::string bytes = Say(EncodeFrame(1, text));
    return bytes.empty() ? "" : Unsealed(bytes, text);
  }
  std::string Unsealed(std::string_view bytes, std::string_view request) {
    const auto frame = DecodeFrame(bytes);
    if (!frame || frame->text.size() < 12) return "no frame: " + std::string(bytes);
    const std::string_view reply = frame->text.substr(0, frame->text.size() - 12);
    counter = std::stoi(std::string(frame->text.substr(reply.size(), 4)), nullptr, 16);
    const bool isSealed = bytes == EncodeReply(frame->unit, request, reply, static_cast<std::uint16_t>(counter));
    return isSealed ? std::string(reply) : "bad seal: " + std::string(bytes);
  }

  FakeController* controller = nullptr;
  std::unique_ptr<SimulatedController> simulated;
  std::unique_ptr<kv::InProcessLine> line;
  kv::Instant now{1h};
  int counter = 0;
};

}  // namespace sim::test
