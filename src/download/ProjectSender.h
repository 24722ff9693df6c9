#pragma once

#include <cstdint>

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
  // From the first command that changes the controller to the box that says how it went.
  [[nodiscard]] virtual Step Send() = 0;

  // What passes on the line, for the time that it takes.
  struct Traffic {
    std::uint64_t content = 0;  // of the file, as it is sent
    std::uint64_t bytes = 0;    // in both directions, with all that is around it
    std::uint64_t exchanges = 0;
  };
  [[nodiscard]] virtual Traffic Amount() const = 0;
};

// The two sentences about a file that is made for another model.
[[nodiscard]] std::string OtherModelText(const std::string& intended, const std::string& found);

}  // namespace kv
