#pragma once

#include <optional>
#include <string>

#include "download/DownloadOutcome.h"
#include "download/DownloadPreview.h"
#include "download/ProjectDownload.h"

namespace kv {

// What a download of a project would find, before the user has decided on it.
struct ProjectLook {
  std::optional<DownloadPreview> preview;  // nothing when file and controller do not belong together
  DownloadOutcome outcome;                 // WouldGoOn, or why it would not, each question answered with Yes
};

// A dry run that asks nobody and shows nothing. Only reads; stopped through the pacer.
// `order` names the link and the selected model; the rest of it is left alone.
[[nodiscard]] ProjectLook LookAtProject(Channel& link, const ProjectFile& file, DownloadOrder order, Pacer& pacer);

}  // namespace kv
