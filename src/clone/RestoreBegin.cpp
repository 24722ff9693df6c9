#include "clone/RestoreBegin.h"

#include <string>

#include "base/Hex.h"

namespace kv {
namespace {

using Step = std::expected<void, CloneOutcome>;

constexpr int kWrongLetterCode = 0x0C;
constexpr const char* kLeftLoading =
    "The controller is loading, its program stopped, and segments may be erased. Restore the whole file again.";

Step Command(Channel& link, const std::string& command, std::string_view doing) {
  const auto reply = link.SendCommand(command);
  if (!reply) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
  auto refusal = RefusalIn(reply->text);
  if (!refusal) return {};
  refusal->doing = doing;
  return std::unexpected(CloneOutcome::OfLink(*refusal));
}

CloneOutcome SomebodyLoads() {
  LinkError error;
  error.code = LinkErrorCode::Refused;
  error.doing = "beginning the restore";
  error.happened = "somebody else has begun to load into the controller since you were asked; nothing was sent";
  error.cure = "wait until that is over, or find out who it is, and begin again";
  return CloneOutcome::OfLink(error);
}

// Two erased bytes at its start. The file does not tell the segment's kind of memory; a wrong letter is refused and
// changes nothing.
Step Erase(Channel& link, const CloneSegment& segment) {
  Step erased;
  for (const MemoryKind kind : {MemoryKind::Flash, MemoryKind::Ram}) {
    const std::string command = std::string("WD") + LetterOf(kind) + ToHex(segment.start, kAddressDigits) + "02FFFF";
    erased = Command(link, command, "erasing segment " + segment.code);
    if (erased || erased.error().link.controllerCode != kWrongLetterCode) break;
  }
  return erased;
}

}  // namespace

std::expected<Channel::ControllerInfo, CloneOutcome> MeetAgain(Channel& link, const Channel::ControllerInfo& asked) {
  auto controller = link.GetControllerInfo(link.UnitID());
  if (!controller) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
  if (controller->serialNumber == asked.serialNumber) return *std::move(controller);
  return std::unexpected(CloneOutcome::Failed(
      CloneCause::Link,
      "Another controller answers now: serial number " + std::to_string(controller->serialNumber) + " instead of " +
          std::to_string(asked.serialNumber) +
          ". Nothing was done to it.\nWhat to do: check the cable and the address, and begin again."));
}

Step BeginRestore(Channel& link, const Channel::ControllerInfo& asked, std::span<const CloneSegment> erase) {
  const auto controller = MeetAgain(link, asked);
  if (!controller) return std::unexpected(controller.error());
  if (controller->state == 'L' && asked.state != 'L') return std::unexpected(SomebodyLoads());
  if (controller->state != 'L' && erase.empty()) return {};
  if (auto begun = Command(link, "CCM", "beginning the restore"); !begun) return begun;
  for (const CloneSegment& segment : erase) {
    if (auto erased = Erase(link, segment); !erased) {
      erased.error().reason += std::string("\n") + kLeftLoading;
      return erased;
    }
  }
  return {};
}

}  // namespace kv
