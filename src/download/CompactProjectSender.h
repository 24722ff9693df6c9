#pragma once

#include <string>

#include "download/CompactProjectFile.h"
#include "download/ProjectSender.h"

namespace kv {

// Sends a project to a compact controller: the lines of the file, one command each.
class CompactProjectSender final : public ProjectSender {
 public:
  CompactProjectSender(DownloadWork& work, const CompactProjectFile& project) : mWork(work), mProject(project) {}

  void Begin() override;
  [[nodiscard]] Step CheckFits(const FoundController& controller) override;
  [[nodiscard]] Step Send() override;
  [[nodiscard]] std::string_view SuccessText() const override { return "Download was successful. "; }
  [[nodiscard]] Traffic Amount() const override;

 private:
  [[nodiscard]] Step CheckModel(const FoundController& controller);
  [[nodiscard]] Step CheckEnd();
  // That no line is refused for its form or its place once the old project is erased.
  [[nodiscard]] Step CheckLines();
  [[nodiscard]] Step SendLine(const std::string& line);
  // Until the project memory is erased; `reply` is that to the line itself.
  [[nodiscard]] Step WaitForErase(CommandReply reply);

  DownloadWork& mWork;
  const CompactProjectFile& mProject;
};

}  // namespace kv
