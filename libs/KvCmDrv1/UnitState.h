#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/Time.h"
#include "link/VersionInfo.h"
#include "secret/Secret.h"

namespace kv {

// Who a controller is: after a reconnect both must be what they were.
struct Identity {
  std::uint32_t serialNumber = 0;
  VersionInfo version;
};

// "K220-22-R1, serial number 305419896", UTF-8.
[[nodiscard]] std::string NameOf(const Identity& identity);

// How long a controller may be silent after a reset: the slowest need two seconds, a network adapter before them as
// long again.
inline constexpr Duration kRestartTime = std::chrono::seconds(5);

// After this much silence somebody may have moved the cable, and whoever answers says first who it is. Longer than the
// pause between two questions of the main window, shorter than it takes to walk to the cabinet.
inline constexpr Duration kLongSilence = std::chrono::seconds(3);

// What the driver knows of one unit on the line.
struct UnitState {
  unsigned handshake = 0;       // number of the connection on which it was done last; 0: it has to be done again
  Instant heard{};              // when its last answer arrived
  Instant restartUntil{};       // it was told to reset, and may be silent until then
  bool isSynchronised = false;  // every answer to a settled request from here on has a counter newer than `counter`
  std::uint16_t counter = 0;    // of the seal of the last answer
  std::uint16_t powerUp = 0;    // as SY told it last
  std::optional<Identity> identity;
  std::string project;          // as it was told last, Windows-1252
  bool isAsciiOnly = true;      // its model understands no block messages, or is not known
  bool modelMayChange = false;  // it was sent into its boot loader or out of it since it was identified
  std::string modelBefore;      // that it reported until then; when its power fails it may report that again
  Secret password;              // with which access was given
};

// Whether a controller that identifies itself as `model` understands ASCII frames only: the compact family, its boot
// loaders included.
[[nodiscard]] bool UnderstandsAsciiOnly(std::string_view model);

}  // namespace kv
