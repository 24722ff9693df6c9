#pragma once

#include <cstdint>
#include <string>

#include "base/ProgramPaths.h"
#include "help/HelpViewer.h"

namespace kv {

// The lookups of the help by its map numbers, and where its file is.
class clsHelpHandler {
 public:
  // Both outlive it; `viewer` shows the help where the platform does not.
  clsHelpHandler(const ProgramPaths& paths, HelpViewer& viewer) : mPaths(paths), mViewer(viewer) {}

  [[nodiscard]] std::string CadinzaHelpFileName() const;
  [[nodiscard]] std::string TPHelpFilePathAndName() const;
  [[nodiscard]] std::string TPHelpFilePath() const;  // with a separator at its end

  // Opens the help at the topic with this map number. Who shows it tells when the file is missing.
  void ShowHTMLHelpByMapNumber(std::int32_t mapNumber);

 private:
  const ProgramPaths& mPaths;
  HelpViewer& mViewer;
};

}  // namespace kv
