#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "desktop/VirtualPacer.h"
#include "simulator/SimulatedController.h"

namespace kv::matrix {

// A controller that keeps count of what it was made to do: text requests other than reads, and block messages.
class CountingController final : public sim::Controller {
 public:
  explicit CountingController(std::unique_ptr<sim::Controller> inner) : mInner(std::move(inner)) {}

  void Advance(Instant now) override { mInner->Advance(now); }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    sim::TextReply reply = mInner->ExecuteText(text, connection);
    if (!reply.changesNothing && reply.text.find("ERROR") == std::string::npos) ++mExecuted[std::string(text)];
    return reply;
  }
  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    sim::BlockReply reply = mInner->ExecuteBlock(request, connection);
    if (reply.status < 128 && reply.status != 5)
      ++mBlocks[std::to_string(request.opCode) + std::string(request.payload)];
    return reply;
  }
  void Restart() override {
    mInner->Restart();
    mHasRestarted = true;
    mBlocks.clear();  // what block messages prepare does not outlive the power
  }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override {
    mHasLied = mHasLied || lying;
    mInner->SetLying(lying);
  }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

  void ForgetCounts() {
    mExecuted.clear();
    mBlocks.clear();
    mHasLied = false;
    mHasRestarted = false;
  }
  [[nodiscard]] bool HasLied() const { return mHasLied; }
  [[nodiscard]] bool HasRestarted() const { return mHasRestarted; }
  // How often the request that was executed most often was executed.
  [[nodiscard]] int MostExecutions() const {
    int most = 0;
    for (const auto& [text, count] : mExecuted) most = std::max(most, count);
    return most;
  }
  // Text commands that were executed and may have changed something.
  [[nodiscard]] int Executions() const {
    int all = 0;
    for (const auto& [text, count] : mExecuted) all += count;
    return all;
  }
  [[nodiscard]] int MostBlockExecutions() const {
    int most = 0;
    for (const auto& [payload, count] : mBlocks) most = std::max(most, count);
    return most;
  }
  [[nodiscard]] sim::Controller& Inner() { return *mInner; }

 private:
  std::unique_ptr<sim::Controller> mInner;
  std::map<std::string, int, std::less<>> mExecuted;
  std::map<std::string, int, std::less<>> mBlocks;
  bool mHasLied = false;
  bool mHasRestarted = false;
};

// The driver on its simulated port, a controller whose line misbehaves, and a way to the controller beside that line:
// what stands here is what the controller holds.
class Fixture {
 public:
  explicit Fixture(const std::string& model, std::uint64_t seed = 1) {
    sim::SimulatorOptions options;
    options.model = model;
    options.seed = seed;
    options.memorySeed = static_cast<std::uint32_t>(seed);
    options.password = kPassword;
    auto counting = std::make_unique<CountingController>(sim::Controller::Create(options).value());
    controller = counting.get();
    simulated = sim::SimulatedController::CreateAround(std::move(counting), options).value();
  }

  // The driver's channel, opened when it was closed; null when the controller takes no connection.
  [[nodiscard]] Channel* Link() {
    mChannel = driver.GetChannel();
    if (mChannel && !mHasGivenPassword) mHasGivenPassword = mChannel->GiveAccess(kPassword, 1);
    return mChannel.get();
  }
  // Calls with a deadline of their own that come before the next request.
  [[nodiscard]] int CallsBefore() const { return mHasGivenPassword ? 0 : 1; }
  // How long calls may take that began at `start`: 3 tries of a second each, the end of a port's slice, and what is
  // left of the 5 s of a controller that was told to reset.
  [[nodiscard]] Duration Longest(int calls, Instant start, bool restarts) {
    using namespace std::chrono_literals;
    const Duration rest = restarts ? Duration(5s) : std::max(mRestartUntil - start, Duration{});
    if (restarts) mRestartUntil = pacer.Now() + 5s;
    return calls * (3s + 5ms) + rest;
  }
  // As a user does who closes the link and opens it again.
  void Reopen() {
    driver.CloseDriver();
    mHasGivenPassword = false;
  }

  // A text executed by the controller itself, past every line.
  std::string Tell(std::string_view text) {
    sim::ConnectionAccess own{true};
    return controller->Inner().ExecuteText(text, own).text;
  }
  // The same for a command with tag and check, without both.
  std::string TellOwn(const std::string& name, const std::string& fields = {}) {
    return Tell(name + "0000" + fields + "00000000").substr(6);
  }
  sim::BlockReply TellBlock(const sim::BlockRequest& request) {
    sim::ConnectionAccess own{true};
    return controller->Inner().ExecuteBlock(request, own);
  }
  // A number that was not given out before.
  [[nodiscard]] std::uint16_t Fresh() { return ++mFresh; }

  static constexpr const char* kPassword = "Secret";

  VirtualPacer pacer;
  CountingController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  Driver driver{pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr};

 private:
  std::shared_ptr<Channel> mChannel;
  bool mHasGivenPassword = false;
  std::uint16_t mFresh = 0;
  Instant mRestartUntil{};
};

}  // namespace kv::matrix
