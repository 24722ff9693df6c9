#pragma once

#include <QPointer>
#include <filesystem>
#include <utility>

#include "base/ProgramPaths.h"
#include "desktop/Prompts.h"
#include "help/HelpViewer.h"
#include "help/ui/frmHelp.h"

namespace kv {

// The help on the screen: made when it is first asked for, brought to the front afterwards.
class HelpWindow final : public HelpViewer {
 public:
  // All outlive it. `windowsFile` keeps the window's place.
  HelpWindow(const ProgramPaths& paths, Prompts& prompts, std::filesystem::path windowsFile)
      : mPaths(paths), mPrompts(prompts), mWindowsFile(std::move(windowsFile)) {}
  ~HelpWindow() override { delete mWindow; }
  HelpWindow(const HelpWindow&) = delete;
  HelpWindow& operator=(const HelpWindow&) = delete;

  void ShowTopic(std::int32_t mapNumber) override;

 private:
  const ProgramPaths& mPaths;
  Prompts& mPrompts;
  std::filesystem::path mWindowsFile;
  QPointer<frmHelp> mWindow;
};

}  // namespace kv
