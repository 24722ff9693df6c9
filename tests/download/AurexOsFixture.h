#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "Samples.h"
#include "desktop/VirtualPacer.h"
#include "download/clsAurexOSDownloader.h"
#include "simulator/SimulatedController.h"
#include "tests/support/SilentCloner.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A controller that keeps a list of what it was told beside reads, and whose block replies can be falsified.
class WatchedController final : public sim::Controller {
 public:
  explicit WatchedController(std::unique_ptr<sim::Controller> inner) : mInner(std::move(inner)) {}

  std::string onlyAnswered;       // a command that is answered with CCOK, and not executed
  std::vector<std::string> told;  // "CCB"; a block message as "65 TOPIC.SEQUENCE"
  std::function<void(const sim::BlockRequest&, sim::BlockReply&)> onBlock;
  std::function<void(std::string_view text, sim::TextReply&)> onText;

  void Advance(Instant now) override { mInner->Advance(now); }
  sim::TextReply ExecuteText(std::string_view text, sim::ConnectionAccess& connection) override {
    sim::TextReply reply;
    if (text == onlyAnswered) {
      reply.text = "CCOK";
    } else {
      reply = mInner->ExecuteText(text, connection);
    }
    if (!reply.changesNothing) told.emplace_back(text);
    if (onText) onText(text, reply);
    return reply;
  }
  sim::BlockReply ExecuteBlock(const sim::BlockRequest& request, sim::ConnectionAccess& connection) override {
    sim::BlockReply reply = mInner->ExecuteBlock(request, connection);
    if (request.opCode == 65) {
      told.push_back("65 " + std::to_string(request.param4) + "." + std::to_string(request.param3));
    } else if (request.opCode == 69) {
      told.emplace_back("69");
    }
    if (onBlock) onBlock(request, reply);
    return reply;
  }
  void Restart() override { mInner->Restart(); }
  bool UnderstandsBlocks() const override { return mInner->UnderstandsBlocks(); }
  std::uint8_t Unit() const override { return mInner->Unit(); }
  void SetLying(bool lying) override { mInner->SetLying(lying); }
  std::expected<void, std::string> SaveState() override { return mInner->SaveState(); }

  // Asked past every line: "K220-22-R1|10|4.60|19|R".
  [[nodiscard]] std::string Truth() const {
    sim::ConnectionAccess own{true};
    const std::string state = mInner->ExecuteText("IN000000000000", own).text;
    return mInner->ExecuteText("ID", own).text.substr(2) + "|" + state.substr(14, 1);
  }
  sim::TextReply Tell(std::string_view text) const {
    sim::ConnectionAccess own{true};
    return mInner->ExecuteText(text, own);
  }

 private:
  std::unique_ptr<sim::Controller> mInner;
};

// The user: takes the files that are preselected and says yes, but to sending again.
struct Desk : DownloadWindow, KnowingPrompts, SilentCloner {
  std::vector<std::string> said;  // "Title: the first line of the text", and "(bios)"
  std::vector<MessageBox> boxes;
  std::function<PromptAnswer(const MessageBox&)> answer;
  BiosAnswer bios = BiosAnswer::Continue;
  std::optional<AurexOsChoice> choice;
  std::function<void(std::int64_t current, std::int64_t count)> onProgress;
  std::function<void()> onMemoryLine;  // of the memory that is written back

  void SetStatus(std::string_view) override {}
  void ResetProgress(std::int64_t) override {}
  void StepProgress() override {}
  void ProgressInfo(int, std::int64_t current, std::int64_t count) override {
    if (onProgress) onProgress(current, count);
  }
  void Event_AddWriteCommand(std::string_view) override {
    if (onMemoryLine) onMemoryLine();
  }
  AurexOsChoice ChooseAurexOs(const AurexOsLists& lists) override {
    if (choice) return *choice;
    const auto path = [](const FileList& list) {
      return list.preselected ? list.files[*list.preselected].path : std::filesystem::path();
    };
    return {path(lists.os), path(lists.fonts)};
  }
  std::optional<std::size_t> ChooseCompactOs(const FileList& list) override { return list.preselected; }
  BiosAnswer WarnOfIncompatibleBios() override {
    said.emplace_back("(bios)");
    return bios;
  }
  PromptAnswer Show(const MessageBox& box) override {
    said.push_back(box.title + ": " + box.text.substr(0, box.text.find("\r\n")));
    boxes.push_back(box);
    if (answer) return answer(box);
    return box.text.ends_with("Retry?") ? PromptAnswer::No : Consent(box.buttons);
  }
};

struct AurexOsFixture {
  explicit AurexOsFixture(const std::string& model, const std::string& os = "", bool boot = false,
                          std::uint64_t seed = 1) {
    sim::SimulatorOptions options;
    options.model = model;
    options.osVersion = os;
    options.boot = boot;
    options.seed = seed;
    options.memorySeed = 1;
    auto watched = std::make_unique<WatchedController>(sim::Controller::Create(options).value());
    controller = watched.get();
    simulated = sim::SimulatedController::CreateAround(std::move(watched), options).value();
  }

  // Both files, into the folder of their O/S model ("K220").
  void Put(const std::string& osModel, const sim::OsVersion& os, const sim::OsVersion& fonts, std::size_t size = 3000) {
    const auto folder = home.Path() / "Os Aurex" / osModel;
    std::filesystem::create_directories(folder);
    const std::string model = osModel == "K222" ? "K220-32" : osModel;
    const sim::Model& made = ModelCalled(model == "K220" ? "K220-22-R1" : model);
    PutFile(folder / sim::OsFileName(made, os), SampleOs(std::string(made.name), os, size));
    PutFile(folder / sim::FontsFileName(fonts), SampleFonts(std::string(made.name), fonts));
  }
  static void PutFile(const std::filesystem::path& file, std::string_view content) {
    std::ofstream(file, std::ios::binary) << content;
  }

  bool Download(const DownloadOrder& order = {}) {
    desk.said.clear();
    desk.boxes.clear();
    controller->told.clear();
    const auto link = driver.GetChannel();
    if (!link) return false;
    clsAurexOSDownloader engine(desk, {desk, desk, desk, pacer, pacer}, paths);
    const bool isDone = engine.DownloadOS(*link, order);
    outcome = engine.Outcome();
    review = engine.Review();
    EXPECT_EQ(isDone, outcome.end == DownloadEnd::Done);
    return isDone;
  }
  // As a user does it later, on a good line.
  bool DownloadAgain() {
    EXPECT_TRUE(simulated->UseFaults({}));
    controller->onBlock = nullptr;
    controller->onText = nullptr;
    controller->onlyAnswered.clear();
    driver.CloseDriver();
    pacer.Sleep(std::chrono::minutes(15));
    return Download();
  }

  TemporaryFolder home;
  ProgramPaths paths{home.Path()};
  VirtualPacer pacer;
  Desk desk;
  WatchedController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  Driver driver{pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr};
  DownloadOutcome outcome;
  std::optional<DownloadReview> review;
};

}  // namespace kv::test
