#include "download/ProjectLook.h"

namespace kv {
namespace {

// Yes to everything; or No.
struct Answers final : Prompts {
  explicit Answers(bool isYes) : mIsYes(isYes) {}

  PromptAnswer Show(const MessageBox& box) override {
    return mIsYes ? Consent(box.buttons) : LeastCommitting(box.buttons);
  }
  std::optional<std::string> Ask(const InputBox&) override { return std::nullopt; }
  std::optional<std::string> OpenFile(const FileDialog&) override { return std::nullopt; }
  std::optional<std::string> SaveFile(const FileDialog&) override { return std::nullopt; }

 private:
  bool mIsYes;
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

ProjectLook LookAtProject(Channel& link, const ProjectFile& file, DownloadOrder order, Pacer& pacer) {
  ProjectLook look;
  Answers yes(true);
  Answers no(false);
  NoWindow window;
  ProjectDownload download(window, yes, pacer);
  order.isDryRun = true;
  order.asksBeforeStop = false;
  // Behind this consent the controller may want its password.
  order.promptsOf = [&](DownloadQuestion question) -> Prompts& {
    return question == DownloadQuestion::Begin ? no : yes;
  };
  order.onPreview = [&look](const DownloadPreview& preview) { look.preview = preview; };
  download.Download(link, file, order);
  look.outcome = download.Outcome();
  if (look.preview && look.outcome.end == DownloadEnd::Declined) look.outcome = {.end = DownloadEnd::WouldGoOn};
  return look;
}

}  // namespace kv
