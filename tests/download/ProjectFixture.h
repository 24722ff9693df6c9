#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/PathText.h"
#include "download/ProjectDownload.h"
#include "tests/download/DownloadFixture.h"
#include "tests/download/Samples.h"

namespace kv::test {

inline constexpr const char* kAurex = "K220-22-R1";
inline constexpr const char* kCompact = "Q50";

// Writes each box into the log, "(!) Warning: ...", and consents, but for the questions that hold `declined`.
class Answers : public Prompts {
 public:
  explicit Answers(std::vector<std::string>& log) : mLog(log) {}

  std::string declined;
  std::function<void()> meanwhile = [] {};  // while a question is open
  std::function<void(const std::string& text)> onBox;

  PromptAnswer Show(const MessageBox& box) override {
    const char sign = " i!?x"[static_cast<std::size_t>(box.icon)];
    mLog.push_back(std::string("(") + sign + ") " + box.title + ": " + box.text);
    if (onBox) onBox(box.text);
    if (box.buttons == PromptButtons::Ok) return PromptAnswer::Ok;
    EXPECT_TRUE(box.canLose) << box.text;
    meanwhile();
    return !declined.empty() && box.text.contains(declined) ? PromptAnswer::No : PromptAnswer::Yes;
  }
  std::optional<std::string> Ask(const InputBox&) override { return "1"; }
  std::optional<std::string> OpenFile(const FileDialog&) override { return {}; }
  std::optional<std::string> SaveFile(const FileDialog&) override { return {}; }

 private:
  std::vector<std::string>& mLog;
};

// A controller that runs project "Old", and a file with project "Hall 7".
struct ProjectFixture : DownloadFixture {
  explicit ProjectFixture(const std::string& model, const sim::SimulatorOptions& options = {})
      : DownloadFixture(model, options), isCompact(!controller->UnderstandsBlocks()) {
    Put(SampleProject(model, isCompact ? 200 : 5000));
  }
  void Put(const std::string& content) {
    path = folder.Path() / (isCompact ? "Hall 7.d50" : "Hall 7.dai");
    folder.Put(Utf8FromPath(path.filename()), content);
  }
  // As an engineer's tool did it before.
  void HoldOldProject() {
    if (isCompact) {
      controller->Advance(pacer.Now());
      controller->Tell("DE");
      pacer.Sleep(std::chrono::seconds(3));
      controller->Advance(pacer.Now());
      controller->Tell("LN4F6C64");
      controller->Tell("CCE");
      return;
    }
    folder.Put("Old.dai", Good(sim::MakeProject(ModelCalled(kAurex), {.name = "Old", .os = {"4.60", 19}, .size = 9})));
    EXPECT_EQ(Download(folder.Path() / "Old.dai").end, DownloadEnd::Done);
    log.clear();
  }
  DownloadOutcome Download() { return Download(path); }
  DownloadOutcome Download(const std::filesystem::path& file) {
    const auto project = ReadProject(file, file.extension() == ".d50");
    if (!project) return {.end = DownloadEnd::Failed, .reason = project.error().Text()};
    ProjectDownload engine(window, answers, pacer);
    engine.Download(Link(), *project, order);
    review = engine.Review();
    return engine.Outcome();
  }
  // What was sent that may change the controller.
  [[nodiscard]] std::vector<std::string> Changes() const {
    std::vector<std::string> changes;
    for (const std::string& entry : log) {
      const bool isSurface = entry.starts_with("(") || entry.starts_with("Bar") || entry.starts_with("Note") ||
                             entry.starts_with("Status");
      if (!isSurface) changes.push_back(entry);
    }
    return changes;
  }

  bool isCompact;
  std::filesystem::path path;
  LoggedDownloadWindow window{log};
  Answers answers{log};
  DownloadOrder order{.link = "COM3"};
  std::optional<DownloadReview> review;
};

}  // namespace kv::test
