#include "KvTele2/cache/ResourceReader.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <utility>

#include "base/AnsiText.h"
#include "base/Crc32.h"
#include "link/LinkLimits.h"

namespace kv::cache {

using namespace std::chrono_literals;

namespace {

constexpr Duration kLongestPiece = 2s;         // of a slow line: until then a stop waits
constexpr std::uint32_t kSmallestPiece = 512;  // smaller ones would spend the line on their heads
constexpr int kOutsideCode = 0x0B;             // unknown id, or past the resource's end

std::string ControllerText(const VersionInfo& version, const Channel::ControllerInfo& info) {
  return AnsiToUtf8(version.model) + ", serial number " + std::to_string(info.serialNumber);
}

std::uint32_t PieceOf(PanelLink& panel, std::uint8_t unit) {
  const auto cost = panel.Cost(unit);
  if (!cost || cost->perByte <= Duration{}) return kMostMemoryPerRead;
  const auto fitting = static_cast<std::uint32_t>(std::min<Duration::rep>(kLongestPiece / cost->perByte, 65536));
  return std::clamp(fitting, kSmallestPiece, kMostMemoryPerRead);
}

}  // namespace

ResourceReader::ResourceReader(Channel& link, CacheOwner controller)
    : mLink(link),
      mPanel(*link.Panel()),
      mController(std::move(controller)),
      mConnection(mPanel.Connection()),
      mPiece(PieceOf(mPanel, link.UnitID())) {}

std::unexpected<CacheOutcome> ResourceReader::LinkFailure() const {
  return std::unexpected(CacheOutcome::OfLink(mLink.LastError()));
}

std::expected<void, CacheOutcome> ResourceReader::Meet() {
  const auto version = mLink.GetVersionInfo(mLink.UnitID());
  if (!version) return LinkFailure();
  const auto info = mLink.GetControllerInfo(mLink.UnitID());
  if (!info) return LinkFailure();
  mConnection = mPanel.Connection();
  const CacheOwner now{.version = *version, .serialNumber = info->serialNumber, .project = info->projectName};
  if (now == mController) return {};
  if (!now.IsController(mController)) {
    return std::unexpected(CacheOutcome::Failed(CacheCause::OtherController, {},
                                                "Another controller answers now: " + ControllerText(*version, *info) +
                                                    ".\nWhat to do: check the cable and the "
                                                    "address, and begin again."));
  }
  return std::unexpected(CacheOutcome::Failed(
      CacheCause::Changed, {},
      "The controller has got another O/S or project meanwhile.\nWhat to do: import again when that is over."));
}

std::expected<void, CacheOutcome> ResourceReader::MeetAfterReconnect() {
  return mPanel.Connection() == mConnection ? std::expected<void, CacheOutcome>() : Meet();
}

std::expected<std::optional<PanelDescription>, CacheOutcome> ResourceReader::Describe() {
  const auto panel = mPanel.Describe(mLink.UnitID());
  if (!panel) return LinkFailure();
  return panel->kind == PanelKind::Colour ? panel : std::nullopt;
}

std::expected<PanelDirectory, CacheOutcome> ResourceReader::Directory(PanelResourceKind kind) {
  auto directory = mPanel.Directory(kind, mLink.UnitID());
  if (!directory) return LinkFailure();
  if (auto met = MeetAfterReconnect(); !met) return std::unexpected(met.error());
  const auto tooMuch = [](const std::string& what) {
    return std::unexpected(CacheOutcome::Failed(
        CacheCause::TooMuch, {}, "No cache file can hold what the controller's directory names: " + what + "."));
  };
  std::set<std::uint16_t> ids;
  for (const PanelResource& entry : directory->entries) {
    const std::string id = std::to_string(entry.id);
    if (!ids.insert(entry.id).second) return tooMuch("the number " + id + " stands in it twice");
    if (entry.length > kMostResourceBytes) return tooMuch("number " + id + " has more than 16 MB");
  }
  return *std::move(directory);
}

std::expected<std::optional<std::string>, CacheOutcome> ResourceReader::Read(
    PanelResourceKind kind, const PanelResource& entry, const std::function<bool(std::uint32_t)>& onPiece) {
  std::string bytes;
  bytes.reserve(entry.length);
  while (bytes.size() < entry.length) {
    const auto offset = static_cast<std::uint32_t>(bytes.size());
    const auto piece =
        mPanel.ReadPiece(kind, entry.id, offset, std::min(mPiece, entry.length - offset), mLink.UnitID());
    const LinkError error = piece ? LinkError() : mLink.LastError();
    const bool isGone = error.code == LinkErrorCode::Refused && error.controllerCode == kOutsideCode;
    if (isGone) return std::nullopt;
    if (!piece) return LinkFailure();
    if (auto met = MeetAfterReconnect(); !met) return std::unexpected(met.error());
    bytes.append(piece->begin(), piece->end());
    if (!onPiece(static_cast<std::uint32_t>(piece->size()))) return std::unexpected(CacheOutcome::OfStop());
  }
  if (Crc32(bytes) != entry.check) return std::nullopt;
  return bytes;
}

}  // namespace kv::cache
