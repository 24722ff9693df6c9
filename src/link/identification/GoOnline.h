#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "desktop/Prompts.h"
#include "host/shared/SharedState.h"
#include "link/VersionInfo.h"

namespace kv {

// Handler of "ID_OnLine": identifies the controller on the driver's channel, refuses one that the panel cannot be
// operated on, tells the host what it is talking to, and goes on line. A host that is on line already goes straight to
// its panel session.
//
// Refusals are shown under "Telepanel" and end the sequence with nothing changed on the host beyond what the steps
// before did. Without a channel, or when the controller does not answer, it ends silently: the driver has reported that
// itself.
void GoOnline(SharedState& shared, Prompts& prompts);

// A boot loader's model text that stands for the model it will become.
struct BootSubstitution {
  std::string_view reported;
  std::string_view usedAs;
  bool isBootSubstitute;
};
// The row for a reported model text; nothing when the text is used as it is.
[[nodiscard]] std::optional<BootSubstitution> FindBootSubstitution(std::string_view reportedModel);

// The version number that colour controllers and the K230 are judged by: (major x 1000 + minor) x 100 + build. 0 for a
// version text or build that cannot be read, which every minimum refuses.
[[nodiscard]] std::int64_t ColourVersionNumber(const VersionInfo& version);
// The version number of all others: the O/S version without its points. 0 when it cannot be read.
[[nodiscard]] std::int64_t PlainVersionNumber(const VersionInfo& version);

// The least versions that can show their panel: 1.0 build 19, and 2.91.
inline constexpr int kLeastColourVersion = 100019;
inline constexpr int kLeastPlainVersion = 291;

}  // namespace kv
