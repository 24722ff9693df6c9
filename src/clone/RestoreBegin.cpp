#include "clone/RestoreBegin.h"

#include <string>

#include "base/Numbers.h"

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

// Two erased bytes at its start. The file does not tell the segment's kind of memory; a wrong letter is refused and
// changes nothing.
Step Erase(Channel& link, const CloneSegment& segment) {
  Step erased;
  for (const MemoryKind kind : {MemoryKind::Flash, MemoryKind::Ram}) {
    const std::string command = std::string("WD") + LetterOf(kind) + ToHex(segment.start, 8) + "02FFFF";
    erased = Command(link, command, "erasing segment " + segment.code);
    if (erased || erased.error().link.controllerCode != kWrongLetterCode) break;
  }
  return erased;
}

}  // namespace

Step BeginRestore(Channel& link, std::span<const CloneSegment> erase) {
  const auto controller = link.GetControllerInfo(link.UnitID());
  if (!controller) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
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
