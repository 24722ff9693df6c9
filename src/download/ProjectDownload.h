#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "desktop/Pacer.h"
#include "desktop/Prompts.h"
#include "download/AurexProjectFile.h"
#include "download/CompactProjectFile.h"
#include "download/DownloadOrder.h"
#include "download/DownloadOutcome.h"
#include "download/DownloadWindow.h"
#include "link/Channel.h"

namespace kv {

// Caption of the download window, and title of the boxes that have none of their own.
inline constexpr std::string_view kDownloaderCaption = "Downloader";

// A project file of either family, as it was read when the user chose it.
struct ProjectFile {
  std::filesystem::path path;
  std::variant<AurexProjectFile, CompactProjectFile> project;

  [[nodiscard]] bool IsCompact() const { return std::holds_alternative<CompactProjectFile>(project); }
  [[nodiscard]] const std::string& Name() const;  // of the project
  // That the controller will report: nothing when the file does not tell, empty for none.
  [[nodiscard]] std::optional<std::string> NameInController() const;
  [[nodiscard]] const std::string& Model() const;  // that it is made for
  [[nodiscard]] const ContentStamp& Stamp() const;
};

// `isCompact`: what the file must be, whatever its extension says.
[[nodiscard]] std::expected<ProjectFile, DownloadFileError> ReadProject(const std::filesystem::path& file,
                                                                        bool isCompact);
// What is said of a file that ReadProject refuses, under the title "Warning".
[[nodiscard]] std::string NotLegalText(bool isCompact);

// Sends a project into the connected controller.
//
//   checking -> consent -> backup -> sending -> programming -> reset -> identified again
//
// One instance serves one download. It tells the user in boxes of settled text; failures of the link and stops are
// told by Outcome() alone. What the controller is left as when it is cut at each step: docs/downloads.md.
class ProjectDownload {
 public:
  ProjectDownload(DownloadWindow& window, Prompts& prompts, Pacer& pacer)
      : mWindow(window), mPrompts(prompts), mPacer(pacer) {}
  ProjectDownload(const ProjectDownload&) = delete;
  ProjectDownload& operator=(const ProjectDownload&) = delete;

  // The user stops it through the pacer; it notices between two exchanges.
  void Download(Channel& link, const ProjectFile& file, const DownloadOrder& order);

  [[nodiscard]] const DownloadOutcome& Outcome() const { return mOutcome; }
  // Nothing before the controller has answered after its reset.
  [[nodiscard]] const std::optional<DownloadReview>& Review() const { return mReview; }

 private:
  class Run;

  DownloadWindow& mWindow;
  Prompts& mPrompts;
  Pacer& mPacer;
  DownloadOutcome mOutcome;
  std::optional<DownloadReview> mReview;
};

}  // namespace kv
