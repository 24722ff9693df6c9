#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "download/DownloadWork.h"
#include "download/FoundController.h"

namespace kv {

// One of the two ways in which a project goes into a controller.
class ProjectSender {
 public:
  using Step = DownloadWork::Step;

  virtual ~ProjectSender() = default;

  // What is shown first, before the controller is asked anything.
  virtual void Begin() = 0;
  // Whether file and controller belong together: the settled boxes and questions about it.
  [[nodiscard]] virtual Step CheckFits(const FoundController& controller) = 0;
  // From the first command that changes the controller to the reset.
  [[nodiscard]] virtual Step Send() = 0;
  // What the box says that tells of the success.
  [[nodiscard]] virtual std::string_view SuccessText() const = 0;

  // Whether all ends with a reset, behind which the new project runs.
  [[nodiscard]] virtual bool Restarts() const { return true; }

  // What passes on the line, for the time that it takes.
  struct Traffic {
    std::uint64_t content = 0;  // of the file, as it is sent
    std::uint64_t bytes = 0;    // in both directions, with all that is around it
    std::uint64_t exchanges = 0;
  };
  [[nodiscard]] virtual Traffic Amount() const = 0;

  // "4.60 (B19) or newer"; nothing when the file does not tell.
  [[nodiscard]] virtual std::optional<std::string> NeededOs() const { return std::nullopt; }
};

// The two sentences about a file that is made for another model.
[[nodiscard]] std::string OtherModelText(const std::string& intended, const std::string& found);

}  // namespace kv
