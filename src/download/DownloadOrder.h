#pragma once

#include <functional>
#include <string>

#include "download/BackupBefore.h"
#include "download/DownloadPreview.h"

namespace kv {

// What each of the downloads is told beside its file.
struct DownloadOrder {
  std::string link = {};           // description of the link, for questions and headings
  bool isDryRun = false;           // everything up to the first command that changes the controller
  BackupBefore* backup = nullptr;  // taken when all questions are answered; null: none
  // Called once, when both sides are known and before the first question; may be empty.
  std::function<void(const DownloadPreview& preview)> onPreview = {};
};

}  // namespace kv
