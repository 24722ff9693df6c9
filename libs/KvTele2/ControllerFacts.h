#pragma once

#include <cstdint>
#include <string>

#include "host/shared/RemoteHost.h"
#include "link/Channel.h"
#include "link/VersionInfo.h"

namespace kv {

// What the controller page shows about the controller, as texts (UTF-8). A text is empty when it is not known.
struct ControllerFacts {
  std::string model;
  std::string hardwareCode;
  std::string os;     // "4.60", also for controllers that report their version in fields
  std::string build;  // "19"
  std::string unit;
  std::string state;  // "Running"
  std::string project;
  std::string serialNumber;  // decimal, as in error texts and on the command line

  bool operator==(const ControllerFacts&) const = default;
};

// The facts of a controller that has just said who it is.
[[nodiscard]] ControllerFacts ControllerFactsOf(const VersionInfo& version, int unit);
// Adds what the controller tells beside its version: this can change while it is on line.
void AddInfo(ControllerFacts& facts, const Channel::ControllerInfo& info);

// The same of a controller that is refused.
[[nodiscard]] ControllerFacts ControllerFactsOf(const RefusedController& refused, int unit);
// Why a controller was refused, with a line about what is known of it. `text` has CR LF or LF between its lines.
[[nodiscard]] std::string RefusalText(const std::string& text, const ControllerFacts& facts);

// What the controller page shows about the link.
struct LinkFacts {
  std::string roundTrip;  // "1.25 ms"
  std::string exchanges;
  std::string repeats;
  std::string errors;

  bool operator==(const LinkFacts&) const = default;
};
[[nodiscard]] LinkFacts LinkFactsOf(const LinkQuality& quality);

}  // namespace kv
