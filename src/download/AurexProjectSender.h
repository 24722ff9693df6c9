#pragma once

#include "download/AurexProjectFile.h"
#include "download/ProjectSender.h"

namespace kv {

// Sends a project to an Aurex controller as block messages: password block (66), the same again (2), topics (65),
// programming (69), reset.
class AurexProjectSender final : public ProjectSender {
 public:
  AurexProjectSender(DownloadWork& work, const AurexProjectFile& project) : mWork(work), mProject(project) {}

  void Begin() override {}
  [[nodiscard]] Step CheckFits(const FoundController& controller) override;
  [[nodiscard]] Step Send() override;
  [[nodiscard]] std::string_view SuccessText() const override { return "Download was successful."; }
  [[nodiscard]] Traffic Amount() const override;
  [[nodiscard]] std::optional<std::string> NeededOs() const override;

 private:
  [[nodiscard]] Step CheckOs(const FoundController& controller);
  [[nodiscard]] Step StopProgram();
  [[nodiscard]] Step BeginProject();
  [[nodiscard]] Step SendTopics();
  [[nodiscard]] Step CheckAllArrived();
  [[nodiscard]] Step SendTopic(const AurexProjectTopic& topic);
  [[nodiscard]] Step Program();
  [[nodiscard]] Step Reset();

  // Until the controller is idle; with `isWhole` also until it says that what it received is complete and valid.
  [[nodiscard]] Step WaitForIdle(bool isWhole);
  [[nodiscard]] Step FlashFailed(const Bytes& status);
  [[nodiscard]] Step CheckStillLoads();
  [[nodiscard]] std::expected<Bytes, DownloadOutcome> AskStatus();
  // Waits for a controller that is busy.
  [[nodiscard]] std::expected<Bytes, DownloadOutcome> SendBlock(const BlockFields& fields,
                                                                std::span<const std::uint8_t> data = {});
  // A block message that may be sent twice.
  [[nodiscard]] Step SendRepeatable(std::uint16_t operation, std::span<const std::uint8_t> data);

  DownloadWork& mWork;
  const AurexProjectFile& mProject;
  std::size_t mSent = 0;  // topics
};

}  // namespace kv
