#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include "simulator/Controller.h"
#include "tests/support/Recorded.h"

namespace sim::test {

// What a controller was asked and answered, which is held against the record of the test when it goes.
struct Dialogue {
  Dialogue() = default;
  Dialogue(const Dialogue&) = delete;
  ~Dialogue() {
    kv::test::ExpectAsRecorded([this] { return text; });
  }
  std::string text;
};

inline SimulatorOptions Options(const std::string& model, const std::string& osVersion = "") {
  SimulatorOptions options;
  options.model = model;
  options.osVersion = osVersion;
  options.powerUp = std::uint16_t{7};
  return options;
}

// One controller with one connection to it and a clock of its own.
class Fixture {
 public:
  explicit Fixture(const SimulatorOptions& options) {
    auto made = Controller::Create(options);
    if (!made) throw std::runtime_error(made.error());
    mController = std::move(*made);
    mController->Advance(mNow);
  }
  explicit Fixture(const std::string& model) : Fixture(Options(model)) {}

  TextReply Send(const std::string& text) {
    const TextReply reply = mController->ExecuteText(text, connection);
    mDialogue->text += "--> " + text + "\n<-- " + reply.text + (reply.changesNothing ? "" : ", a change") +
                       (reply.resets ? ", resets" : "") + (reply.newBaud ? ", " + std::to_string(*reply.newBaud) : "") +
                       "\n";
    return reply;
  }
  std::string Text(const std::string& text) { return Send(text).text; }
  // A command with tag and check; the reply without name and tag, which are verified.
  std::string Own(const std::string& name, const std::string& fields) {
    const std::string reply = Text(name + "A1B2" + fields + "00000000");
    if (reply.starts_with(name + "ERROR")) return reply.substr(2);
    EXPECT_EQ(reply.substr(0, 6), name + "A1B2");
    return reply.substr(6);
  }
  // The values of operands, by type, start and count in digits.
  std::string Read(const std::string& place) {
    const std::string reply = Own("RO", place);
    EXPECT_TRUE(reply.starts_with(place)) << reply;
    return reply.substr(std::min(place.size(), reply.size()));
  }
  void Write(const std::string& place, const std::string& values) {
    EXPECT_EQ(Own("WO", place + values), place + "OK");
  }
  BlockReply Block(std::uint16_t opCode, std::uint32_t param1 = 0, std::uint32_t dataLength = 0,
                   std::uint16_t param3 = 0, std::uint16_t param4 = 0, const std::string& payload = "") {
    BlockReply reply = mController->ExecuteBlock({opCode, param1, dataLength, param3, param4, payload}, connection);
    mDialogue->text += "--> block";
    for (const std::uint32_t field :
         {std::uint32_t{opCode}, param1, dataLength, std::uint32_t{param3}, std::uint32_t{param4}})
      mDialogue->text += " " + std::to_string(field);
    mDialogue->text += " " + kv::test::Shown(payload) + "\n<-- " + std::to_string(reply.status) + " " +
                       kv::test::Shown(reply.payload) + "\n";
    return reply;
  }
  void Wait(kv::Duration time) {
    mNow += time;
    mController->Advance(mNow);
  }
  char State() { return Own("IN", "")[8]; }
  Controller& It() { return *mController; }

  ConnectionAccess connection;

 private:
  kv::Instant mNow{std::chrono::hours(7)};
  std::unique_ptr<Controller> mController;
  std::unique_ptr<Dialogue> mDialogue = std::make_unique<Dialogue>();
};

}  // namespace sim::test
