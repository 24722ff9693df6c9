#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

#include "link/Channel.h"
#include "link/LinkError.h"

namespace kv {

// Which way downloads go into a controller.
enum class DownloadFamily : std::uint8_t {
  Aurex,    // block messages: .dai, .kos and .kft
  Compact,  // text commands alone: .d50 and .OSI
  Colour,   // by no download that is here
};

// Of the connected controller that reports itself as `reported`: by whether it understands block messages, which a boot
// loader tells, too, that says no more than "BOOT".
[[nodiscard]] std::expected<DownloadFamily, LinkError> DownloadFamilyOf(Channel& link, std::string_view reported);

// The Q50, Q51, Q58, PX1 and PR1, by the first letters; a BRIO counts, too. Not AurexQ50: its downloads are those of an
// Aurex controller.
[[nodiscard]] bool IsQ50Model(std::string_view model);

// Of the model that is selected, as long as no controller has answered.
[[nodiscard]] DownloadFamily DownloadFamilyOfModel(std::string_view selected);

// What a controller with a colour screen is told whose O/S is to be replaced.
inline constexpr std::string_view kColourOsRefusal =
    "There is a mismatch between PLC Type defined in Telepanel and connected PLC.";

// The OEM edition whose users do not see the models' own names.
inline constexpr std::string_view kUserLomba = "USER_LOMBA";

// A model as it is shown to the users of an edition; may be empty. `user` is the edition, most often empty.
[[nodiscard]] std::string ModelLabel(std::string_view model, std::string_view user);

}  // namespace kv
