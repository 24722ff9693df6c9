#include "download/ProjectLook.h"

namespace kv {
namespace {

struct YesToAll final : Prompts {
  PromptAnswer Show(const MessageBox& box) override { return Consent(box.buttons); }
  std::optional<std::string> Ask(const InputBox&) override { return std::nullopt; }
  std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }
};

struct NoWindow final : DownloadWindow {
  void SetStatus(std::string_view) override {}
  void ResetProgress(std::int64_t) override {}
  void StepProgress() override {}
  void ProgressInfo(int, std::int64_t, std::int64_t) override {}
  AurexOsChoice ChooseAurexOs(const AurexOsLists&) override { return {}; }
  std::optional<std::size_t> ChooseCompactOs(const FileList&) override { return std::nullopt; }
  BiosAnswer WarnOfIncompatibleBios() override { return BiosAnswer::Abort; }
};

}  // namespace

ProjectLook LookAtProject(Channel& link, const ProjectFile& file, const std::string& linkText, Pacer& pacer) {
  ProjectLook look;
  YesToAll prompts;
  NoWindow window;
  ProjectDownload download(window, prompts, pacer);
  DownloadOrder order{.link = linkText, .isDryRun = true};
  order.asksBeforeStop = false;
  order.onPreview = [&look](const DownloadPreview& preview) { look.preview = preview; };
  download.Download(link, file, order);
  look.outcome = download.Outcome();
  return look;
}

}  // namespace kv
