#pragma once

#include <string>

#include "download/ProjectDownload.h"
#include "tests/download/DownloadFixture.h"

namespace kv::test {

inline constexpr const char* kAurex = "K220-22-R1";
inline constexpr const char* kCompact = "Q50";

// A controller, and a file with project "Hall 7".
struct ProjectFixture final : DownloadFixture {
  explicit ProjectFixture(const sim::SimulatorOptions& options)
      : DownloadFixture(options), isCompact(!controller->UnderstandsBlocks()) {
    opensAnew = false;
    Put(SampleProject(options.model, isCompact ? 200 : 5000));
  }
  explicit ProjectFixture(const std::string& model) : ProjectFixture(Plc(model)) {}

  void Put(const std::string& content) {
    path = PutFile(home.Path() / (isCompact ? "Hall 7.d50" : "Hall 7.dai"), content);
  }
  // It runs project "Old".
  void Prepare() override {
    if (isCompact) {  // as an engineer's tool does it
      controller->Advance(pacer.Now());
      controller->Tell("DE");
      pacer.Sleep(std::chrono::seconds(3));
      controller->Advance(pacer.Now());
      controller->Tell("LN4F6C64");
      controller->Tell("CCE");
      return;
    }
    const auto file = std::exchange(
        path, PutFile(home.Path() / "Old.dai",
                      Good(sim::MakeProject(ModelCalled(kAurex), {.name = "Old", .os = {"4.60", 19}, .size = 9}))));
    EXPECT_TRUE(Download());
    path = file;
  }
  [[nodiscard]] std::string Found() const override {
    const std::string project = controller->Project();
    if (project.empty()) return WithState("no project");
    return WithState(project == "Old" ? "old project" : project == "Hall 7" ? "new project" : "project " + project);
  }

  bool isCompact;
  std::filesystem::path path;

 private:
  void Run(Channel& link) override {
    const auto project = ReadProject(path, isCompact);
    if (!project) {
      outcome = {.end = DownloadEnd::Failed, .reason = project.error().Text()};
      return;
    }
    ProjectDownload engine(desk, desk, pacer);
    engine.Download(link, *project, order);
    Keep(engine);
  }
};

}  // namespace kv::test
