#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>

#include "KvTele2/cache/CacheFile.h"
#include "KvTele2/cache/CacheOutcome.h"
#include "link/Channel.h"

namespace kv::cache {

// Reads directories, fonts and images of one controller, and of no other: whenever the link has been opened anew, it
// asks first who answers now.
class ResourceReader {
 public:
  // The channel has a panel, and outlives it.
  ResourceReader(Channel& link, CacheOwner controller);

  // Bytes that one request reads at most.
  [[nodiscard]] std::uint32_t Piece() const { return mPiece; }
  // That it is the same controller, with the same O/S and project.
  [[nodiscard]] std::expected<void, CacheOutcome> Meet();
  // Refused when no cache can hold it: an id twice, or more than a file may have.
  [[nodiscard]] std::expected<PanelDirectory, CacheOutcome> Directory(PanelResourceKind kind);
  // The bytes that the entry names; nothing when what was read is not what it names. `onPiece` hears how many bytes
  // have come with each piece; false ends it as stopped.
  [[nodiscard]] std::expected<std::optional<std::string>, CacheOutcome> Read(
      PanelResourceKind kind, const PanelResource& entry, const std::function<bool(std::uint32_t)>& onPiece);
  // Nothing: the controller has no display in colours.
  [[nodiscard]] std::expected<std::optional<PanelDescription>, CacheOutcome> Describe();

 private:
  [[nodiscard]] std::expected<void, CacheOutcome> MeetAfterReconnect();
  [[nodiscard]] std::unexpected<CacheOutcome> LinkFailure() const;

  Channel& mLink;
  PanelLink& mPanel;
  CacheOwner mController;
  unsigned mConnection;
  std::uint32_t mPiece;
};

}  // namespace kv::cache
