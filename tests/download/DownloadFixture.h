#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "desktop/VirtualPacer.h"
#include "download/DownloadWindow.h"
#include "simulator/SimulatedController.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A simulated controller that writes into a log what may change it: text commands ("CCS"), and block messages ("66").
class LoggedController final : public sim::Controller {
 public:
  LoggedController(std::unique_ptr<sim::Controller> inner, std::vector<std::string>& log)
      : mInner(std::move(inner)), mLog(log) {}

  std::function<void(const sim::BlockRequest& request, sim::BlockReply& reply)> onBlock;  // may change the reply
  std::function<void(std::string_view command)> onText;                                   // before it is executed

  void Advance(Instant now) override { mInner->Advance(now); }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    if (onText) onText(text);
    sim::TextReply reply = mInner->ExecuteText(text, connection);
    if (!reply.changesNothing) mLog.emplace_back(text.substr(0, text.starts_with("L") ? 2 : 8));
    return reply;
  }
  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    sim::BlockReply reply = mInner->ExecuteBlock(request, connection);
    const bool mayChange = request.opCode == 2 || (request.opCode >= 65 && request.opCode <= 69);
    if (mayChange) mLog.push_back(std::to_string(request.opCode));
    if (onBlock) onBlock(request, reply);
    return reply;
  }
  void Restart() override { mInner->Restart(); }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override { mInner->SetLying(lying); }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

  // Told past every line and the log.
  std::string Tell(const std::string& text) {
    sim::ConnectionAccess own{true};
    return mInner->ExecuteText(text, own).text;
  }
  // State letter and project, "ROld".
  std::string StateAndProject() {
    const std::string reply = Tell("IN000000000000");
    std::string told = reply.substr(14, 1);
    for (std::size_t i = 15; i + 1 < reply.size(); i += 2) {
      told += static_cast<char>(std::stoi(reply.substr(i, 2), nullptr, 16));
    }
    return told;
  }

 private:
  std::unique_ptr<sim::Controller> mInner;
  std::vector<std::string>& mLog;
};

// The driver on a simulated line to a controller that is logged, on virtual time.
struct DownloadFixture {
  explicit DownloadFixture(const std::string& model, sim::SimulatorOptions options = {}) {
    options.model = model;
    auto logged = std::make_unique<LoggedController>(sim::Controller::Create(options).value(), log);
    controller = logged.get();
    simulated = sim::SimulatedController::CreateAround(std::move(logged), options).value();
  }
  Channel& Link() { return *(mChannel = driver.GetChannel()); }
  void UseFault(const std::string& rule) { EXPECT_TRUE(simulated->UseFaults({rule})); }
  void EndFaults() { EXPECT_TRUE(simulated->UseFaults({})); }

  VirtualPacer pacer;
  std::vector<std::string> log;
  LoggedController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  TemporaryFolder folder;
  Driver driver{pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr};

 private:
  std::shared_ptr<Channel> mChannel;
};

// Writes into the log what the engine shows, but for single steps of the bar.
class LoggedDownloadWindow : public DownloadWindow {
 public:
  explicit LoggedDownloadWindow(std::vector<std::string>& log) : mLog(log) {}

  std::int64_t steps = 0;  // of the bar, since it was reset

  void SetStatus(std::string_view text) override { mLog.push_back("Status " + std::string(text)); }
  void Note(std::string_view text) override { mLog.push_back("Note " + std::string(text)); }
  void ResetProgress(std::int64_t maximum) override {
    mLog.push_back("Bar " + std::to_string(maximum));
    mMaximum = maximum;
    steps = 0;
  }
  void StepProgress() override { EXPECT_LE(++steps, mMaximum); }
  void ProgressInfo(int, std::int64_t, std::int64_t) override {}
  AurexOsChoice ChooseAurexOs(const AurexOsLists&) override { return {}; }
  std::optional<std::size_t> ChooseCompactOs(const FileList&) override { return {}; }
  BiosAnswer WarnOfIncompatibleBios() override { return BiosAnswer::Abort; }

 private:
  std::vector<std::string>& mLog;
  std::int64_t mMaximum = 0;
};

}  // namespace kv::test
