#pragma once

#include <cstdint>
#include <string>

#include "download/CompactProjectFile.h"
#include "download/CompactProjectImage.h"
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
  [[nodiscard]] bool Restarts() const override;

 private:
  [[nodiscard]] Step CheckModel(const FoundController& controller);
  [[nodiscard]] Step CheckEnd();
  // That no line is refused for its form or its place once the old project is erased.
  [[nodiscard]] Step CheckLines();
  [[nodiscard]] Step SendLine(const std::string& line);
  // Reads back what was sent since it was done last.
  [[nodiscard]] Step CompareWithSent();
  [[nodiscard]] Step Differs(std::uint32_t place, const std::string& how);
  // Until the project memory is erased; `reply` is that to the line itself.
  [[nodiscard]] Step WaitForErase(CommandReply reply);

  DownloadWork& mWork;
  const CompactProjectFile& mProject;
  CompactProjectImage mImage;
};

}  // namespace kv
