#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "base/ProgramPaths.h"
#include "desktop/VirtualPacer.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadWindow.h"
#include "tests/download/LoggedController.h"
#include "tests/download/Samples.h"
#include "tests/support/PortTo.h"
#include "tests/support/Recorded.h"
#include "tests/support/SilentCloner.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// The user: takes the files that are preselected and says yes, but to sending again.
struct Desk : DownloadWindow, KnowingPrompts, SilentCloner {
  std::vector<std::string> log;   // all that is shown or sent: "(!) Title: text [OK]", "Status text", "Bar 12", "CCS"
  std::vector<std::string> said;  // "Title: the first line of the text", and "(bios)"
  std::vector<MessageBox> boxes;
  std::string declined;        // questions that hold this are answered with No,
  std::size_t declinedAt = 0;  // and so is the one with this place in `said`
  int retries = 0;             // how often a message may be sent again
  BiosAnswer bios = BiosAnswer::Continue;
  std::optional<AurexOsChoice> choice;
  std::function<void(const MessageBox&)> onBox;  // while it is open
  std::function<void(std::int64_t current, std::int64_t count)> onProgress;
  std::function<void()> onMemoryLine;  // of the memory that is written back

  std::map<std::pair<int, std::int64_t>, std::int64_t> steps;  // of what and how many, as far as they were told

  void Clear() {
    steps.clear();
    log.clear();
    said.clear();
    boxes.clear();
  }
  void SetStatus(std::string_view text) override { log.push_back("Status " + std::string(text)); }
  void Note(std::string_view text) override { log.push_back("Note " + std::string(text)); }
  void ResetProgress(std::int64_t maximum) override {
    log.push_back("Bar " + std::to_string(maximum));
    mStepsLeft = maximum;
  }
  void StepProgress() override { EXPECT_GE(--mStepsLeft, 0); }
  void ProgressInfo(int what, std::int64_t current, std::int64_t count) override {
    steps.insert_or_assign({what, count}, current);
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
    log.emplace_back("(bios)");
    return bios;
  }
  PromptAnswer Show(const MessageBox& box) override {
    said.push_back(box.title + ": " + box.text.substr(0, box.text.find("\r\n")));
    boxes.push_back(box);
    const char sign = " i!?x"[static_cast<std::size_t>(box.icon)];
    const char* const buttons[] = {" [OK]", " [OK, Cancel]", " [Yes, No]"};
    log.push_back(std::string("(") + sign + ") " + box.title + ": " + box.text +
                  buttons[static_cast<std::size_t>(box.buttons)] + (box.canLose ? ", can lose" : ""));
    if (onBox) onBox(box);
    if (box.text.ends_with("Retry?")) return retries-- > 0 ? PromptAnswer::Yes : PromptAnswer::No;
    EXPECT_TRUE(box.canLose || box.buttons == PromptButtons::Ok) << box.text;
    const bool isDeclined = (!declined.empty() && box.text.contains(declined)) || said.size() == declinedAt;
    if (isDeclined && box.buttons == PromptButtons::Ok) return PromptAnswer::Cancel;  // it was closed
    return isDeclined ? LeastCommitting(box.buttons) : Consent(box.buttons);
  }

 private:
  std::int64_t mStepsLeft = 0;
};

// A download into a logged controller, on virtual time and over a simulated line. What is new has a name of its own.
struct DownloadFixture {
  explicit DownloadFixture(const sim::SimulatorOptions& options) {
    auto logged = std::make_unique<LoggedController>(sim::Controller::Create(options).value());
    controller = logged.get();
    controller->onTold = [this](const std::string& told) { desk.log.push_back(CommandOf(told)); };
    simulated = sim::SimulatedController::CreateAround(std::move(logged), options).value();
  }
  virtual ~DownloadFixture() = default;
  DownloadFixture(const DownloadFixture&) = delete;
  DownloadFixture& operator=(const DownloadFixture&) = delete;

  // The old project, or O/S, and what is to be sent.
  virtual void Prepare() = 0;
  // What is in the controller, in the words of the page: "new O/S, stopped".
  [[nodiscard]] virtual std::string Found() const = 0;

  std::shared_ptr<Channel> Link() {
    driver.UseSettings(settings, false);
    return driver.GetChannel();
  }
  void UseFaults(const std::vector<std::string>& rules) { EXPECT_TRUE(simulated->UseFaults(rules)); }
  bool Download() {
    desk.Clear();
    controller->told.clear();
    const auto link = Link();
    if (!link) return false;
    const Instant start = pacer.Now();
    const auto shown = order.onPreview;
    order.onPreview = [&](const DownloadPreview& preview) {
      desk.log.push_back("Preview " + AmountText(preview));
      for (const auto* sentences : {&preview.losses, &preview.warnings})
        std::ranges::copy(*sentences, std::back_inserter(desk.log));
      if (shown) shown(preview);
    };
    Run(*link);
    order.onPreview = shown;
    ExpectAsRecorded([&] { return All(pacer.Now() - start); });
    return outcome.end == DownloadEnd::Done;
  }
  // As a user does it later, on a good line.
  bool DownloadAgain() {
    UseFaults({});
    controller->onBlock = nullptr;
    controller->onText = nullptr;
    controller->onlyAnswered.clear();
    if (opensAnew) driver.CloseDriver();
    pacer.Sleep(std::chrono::minutes(15));
    return Download();
  }

  TemporaryFolder home;
  ProgramPaths paths{home.Path()};
  VirtualPacer pacer;
  Desk desk;
  LoggedController* controller = nullptr;
  std::unique_ptr<sim::SimulatedController> simulated;
  LinkSettings settings;
  Driver driver{
      pacer, [this](const std::string&) { return simulated->NewLine(); },
      [this](const LinkSettings& link, Pacer&, ListeningSocket*) { return PortTo(simulated->NewLine(), link, pacer); }};
  DownloadOrder order{.link = "COM3"};
  bool opensAnew = true;  // the link, before the download is repeated
  DownloadOutcome outcome;
  std::optional<DownloadReview> review;

 protected:
  virtual void Run(Channel& link) = 0;

  template <typename Engine>
  void Keep(const Engine& engine) {
    outcome = engine.Outcome();
    review = engine.Review();
  }
  // What was shown and sent, equal things in a row as one, how it ended (end, cause and what is left as their
  // numbers), and what is then in the controller.
  [[nodiscard]] std::string All(Duration took) const {
    std::string all;
    for (std::size_t i = 0, next = 0; i < desk.log.size(); i = next) {
      while (next < desk.log.size() && desk.log[next] == desk.log[i]) ++next;
      all += desk.log[i] + (next == i + 1 ? "" : " x " + std::to_string(next - i)) + "\n";
    }
    all += OutcomeText(outcome) + "\n";
    for (const int each : {int(outcome.end), int(outcome.cause), int(outcome.left)}) all += std::to_string(each) + " ";
    all += Found();
    const DownloadSide after = review ? review->after : DownloadSide();
    for (const auto& each : {after.os, after.fonts, after.project}) all += ", " + each.value_or("-");
    for (const auto& [of, last] : desk.steps)
      all += "\nstep " + std::to_string(last) + " of " + std::to_string(of.second) + ", " + std::to_string(of.first);
    all += "\nin " + std::to_string(took.count()) + " microseconds\n";
    return std::regex_replace(WithoutHome(std::move(all), home.Path()), std::regex("[0-9]+[.]part"), "N.part");
  }
  [[nodiscard]] std::string WithState(const std::string& what) const {
    const char state = controller->State();
    return what + (state == 'R' ? "" : state == 'S' ? ", stopped" : ", loading");
  }
};

inline sim::SimulatorOptions Plc(const std::string& model, const std::string& os = "", bool boot = false) {
  sim::SimulatorOptions options;
  options.model = model;
  options.osVersion = os;
  options.boot = boot;
  options.memorySeed = 1;
  return options;
}

}  // namespace kv::test
