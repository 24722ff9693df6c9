#include "clone/RestoreCheck.h"

#include <optional>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "clone/ErasedSegments.h"

namespace kv {
namespace {

constexpr int kOutsideMemoryCode = 0x0B;

// Whether a read of these bytes is inside one segment; nothing when that cannot be found out.
std::optional<bool> IsReadable(Channel& link, std::uint32_t address, std::uint32_t count) {
  if (link.ReadMemoryBlock(address, count, link.UnitID())) return true;
  if (link.LastError().controllerCode == kOutsideMemoryCode) return false;
  return std::nullopt;
}

// What is wrong with the place of a segment; empty when nothing is, nothing when the link failed.
std::optional<std::string> Misfit(Channel& link, const CloneSegment& segment) {
  const std::uint32_t last = segment.start + (segment.length - 1);
  struct Probe {
    std::uint32_t address;
    std::uint32_t count;
    bool mustBeReadable;  // else it reaches over the segment's edge
    const char* what;
  };
  const Probe probes[] = {
      {segment.start, 1, true, "the controller has no memory at its first byte"},
      {last, 1, true, "the controller has no memory at its last byte"},
      {segment.start - 1, 2, false, "the controller's segment begins before it"},
      {last, 2, false, "the controller's segment is longer"},
  };
  for (const Probe& probe : probes) {
    const bool isPastAnEnd = probe.address + (probe.count - 1) < probe.address;  // of the address space
    if (isPastAnEnd) continue;
    const auto isReadable = IsReadable(link, probe.address, probe.count);
    if (!isReadable) return std::nullopt;
    if (*isReadable == probe.mustBeReadable) continue;
    return "Segment " + AnsiToUtf8(segment.code) + " of the file (" + AddressText({segment.start, last}) +
           ") does not fit the controller's memory: " + probe.what + ".";
  }
  return std::string();
}

std::expected<void, CloneOutcome> CheckLayout(Channel& link, const CloneInfo& info, const CloneWork& work,
                                              std::vector<std::string>& obstacles) {
  for (const CloneInfoSegment& each : info.segments) {
    if (each.segment.length == 0) continue;
    if (work.IsStopped()) return std::unexpected(CloneOutcome::OfStop());
    const auto misfit = Misfit(link, each.segment);
    if (!misfit) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
    if (!misfit->empty()) obstacles.push_back(*misfit);
  }
  return {};
}

void Compare(const char* what, const std::string& inFile, const std::string& inController,
             std::vector<std::string>& warnings) {
  if (inFile == inController) return;
  warnings.push_back(std::string("The clone was made with ") + what + " " + AnsiToUtf8(inFile) +
                     ", the controller has " + AnsiToUtf8(inController) + ".");
}

std::vector<std::string> Warnings(const CloneInfo& info, const ManifestReport& manifest, const RestoreCheck& check) {
  std::vector<std::string> warnings;
  if (info.head) {
    Compare("O/S", info.head->version.osVersion, check.version.osVersion, warnings);
    Compare("hardware code", info.head->version.hardwareCode, check.version.hardwareCode, warnings);
  }
  const auto serialNumber = manifest.manifest ? manifest.manifest->serialNumber : std::nullopt;
  if (serialNumber && *serialNumber != check.controller.serialNumber) {
    warnings.push_back("The clone was made from the controller with serial number " + std::to_string(*serialNumber) +
                       ", not from this one.");
  }
  const bool isMadeRunning = manifest.manifest && manifest.manifest->wasRunning;
  if (isMadeRunning || manifest.fit == ManifestFit::Missing || manifest.fit == ManifestFit::Unreadable) {
    warnings.push_back(manifest.text);
  }
  return warnings;
}

}  // namespace

std::expected<RestoreCheck, CloneOutcome> CheckBeforeRestore(Channel& link, const CloneInfo& info,
                                                             const ManifestReport& manifest, const CloneWork& work) {
  const auto version = link.GetVersionInfo(link.UnitID());
  if (!version) return std::unexpected(CloneOutcome::OfLink(link.LastError()));
  const auto controller = link.GetControllerInfo(link.UnitID());
  if (!controller) return std::unexpected(CloneOutcome::OfLink(link.LastError()));

  RestoreCheck check{*version, *controller, {}, {}, {}};
  check.obstacles = FindingsBeforeRestore(info, *version);
  if (manifest.fit == ManifestFit::Other) check.obstacles.push_back(manifest.text);
  if (auto done = CheckLayout(link, info, work, check.obstacles); !done) return std::unexpected(done.error());
  check.warnings = Warnings(info, manifest, check);
  if (!check.obstacles.empty()) return check;
  auto staying = SegmentsThatStay(link, ErasedSegments(info), work);
  if (!staying) return std::unexpected(staying.error());
  check.staying = *std::move(staying);
  return check;
}

std::string RestoreQuestion(const RestoreCheck& check, const CloneInfo& info, const std::filesystem::path& file,
                            const std::string& controller, const std::string& kept) {
  constexpr const char* kLineEnd = "\r\n";
  std::string text = "The memory of the controller is about to be overwritten." + std::string(kLineEnd) + kLineEnd +
                     "Controller: " + controller + kLineEnd + "File: " + Utf8FromPath(file) + kLineEnd;
  if (info.head) text += "Made from: " + HeadText(*info.head) + kLineEnd;
  if (!check.warnings.empty()) text += kLineEnd;
  for (const std::string& warning : check.warnings) text += warning + kLineEnd;
  return text + kLineEnd + "Its program stops; at the end the controller resets and runs. " + kept + " Overwrite it?";
}

std::string EndLoadQuestion(const std::string& controller) {
  return "The controller (" + controller +
         ") is loading: a restore or download was cut, or somebody else's is under way. The restore would begin the "
         "load anew; what somebody else is loading would be lost, and his tool may take what comes out for its own. "
         "End "
         "that load?";
}

std::string HeadText(const CloneHead& head) {
  return AnsiToUtf8(head.version.model + ", O/S " + head.version.osVersion + ", cloned on " + head.created);
}

bool IsSameFile(const std::filesystem::path& first, const std::filesystem::path& second) {
  std::error_code error;
  return std::filesystem::equivalent(first, second, error) && !error;
}

std::string ControllerText(const VersionInfo& version, const Channel::ControllerInfo& controller,
                           const std::string& link) {
  return AnsiToUtf8(version.model) + ", serial number " + std::to_string(controller.serialNumber) + ", " + link;
}

}  // namespace kv
