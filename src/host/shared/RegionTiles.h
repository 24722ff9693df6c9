#pragma once

#include <cstddef>
#include <expected>
#include <optional>
#include <span>
#include <string>

#include "base/Time.h"
#include "link/Channel.h"

namespace kv {

// One of the regions that the user has defined in the session, with its values. Texts are UTF-8.
struct RegionTile {
  std::string operands{};  // "MI 0..9"
  std::string title{};     // the user's own words; empty: none
  std::string values{};    // as the operand view shows them; empty: never read
  std::optional<Instant> readAt{};
  std::string fault{};  // why the last reading failed; empty: it did not
};

// The session's regions, for a host that shows their values by itself. When one is read is the host's to say.
class RegionTiles {
 public:
  virtual ~RegionTiles() = default;

  // Takes the regions as the session has them now; the values of those that were there before stay.
  virtual void LoadTiles() = 0;
  [[nodiscard]] virtual std::span<const RegionTile> Tiles() const = 0;
  // Reads one, with one request.
  virtual std::expected<void, LinkError> ReadTile(std::size_t index, Channel& channel, Instant now) = 0;
};

}  // namespace kv
