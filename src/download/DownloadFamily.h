#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

// Which way downloads go into a controller.
enum class DownloadFamily : std::uint8_t {
  Aurex,    // block messages: .dai, .kos and .kft
  Compact,  // text commands alone: .d50 and .OSI
  Colour,   // by no download that is here
};

// By the model that the controller reports and, where that says nothing (empty, or the "BOOT" of a boot loader), by the
// one that is selected. UTF-8 or Windows-1252: the texts that count are plain.
[[nodiscard]] DownloadFamily DownloadFamilyOf(std::string_view reported, std::string_view selected);

// What a controller with a colour screen is told whose O/S is to be replaced.
inline constexpr std::string_view kColourOsRefusal =
    "There is a mismatch between PLC Type defined in Telepanel and connected PLC.";

// The OEM edition whose users do not see the models' own names.
inline constexpr std::string_view kUserLomba = "USER_LOMBA";

// A model as it is shown to the users of an edition; may be empty. `user` is the edition, most often empty.
[[nodiscard]] std::string ModelLabel(std::string_view model, std::string_view user);

}  // namespace kv
