#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "download/OsNumber.h"

namespace kv {

// A file's name without its folder, UTF-8.
[[nodiscard]] std::string GetFileName(const std::filesystem::path& file);

// What the names of O/S and fonts files say. Names are UTF-8, without their folder; characters are counted from the
// end.
//
//   AurexK220v46019.kos   type (9), any character, version (3), build (2), ".kos": the last 19 characters
//   AurexFontv1300.kft    any 10 characters, version (3), build (1), ".kft": the last 18 characters
//   Q50v4602.OSI          model (3), "v", version (3), build (1), ".OSI": the whole name

// The first 9 of the last 19 characters, whatever they are; of a shorter name, of all that there are.
[[nodiscard]] std::string AurexOsTypeIn(std::string_view name);
// Nothing where a digit is missing.
[[nodiscard]] std::optional<OsNumber> AurexOsNumberIn(std::string_view name);
[[nodiscard]] std::optional<OsNumber> FontsNumberIn(std::string_view name);
// The number at the place of the version alone, which is what the checks before a download compare.
[[nodiscard]] std::optional<int> FontsVersionIn(std::string_view name);

struct CompactOsName {
  std::string model;  // "Q50", "Q51", "Q58", "PX1" or "PR1", as the program writes it
  OsNumber number;

  bool operator==(const CompactOsName&) const = default;
};
[[nodiscard]] std::optional<CompactOsName> CompactOsNameIn(std::string_view name);

// What is known of a compact controller by its O/S model: "Family code 51, display: One Line" for "Q51".
// Empty for none of the five.
[[nodiscard]] std::string CompactModelText(std::string_view model);

// The names that files of this program's own making have.
[[nodiscard]] std::string AurexOsName(std::string_view osModel, const OsNumber& number);
[[nodiscard]] std::string FontsName(const OsNumber& number);
[[nodiscard]] std::string CompactOsFileName(std::string_view osModel, const OsNumber& number);

// The type that files for an Aurex controller must name, from the first 7 characters of its model: "AurexK220" for
// "K220-22", "AurexK222" for "K220-32", "AurexK330" for all others.
[[nodiscard]] std::string_view ExpectedAurexOsType(std::string_view model);

// The model of the controller whose boot loader answers, from its hardware code: "10" is "K220-22", "20" is "K220-32",
// any other "K380-28".
[[nodiscard]] std::string_view AurexModelOfHardware(std::string_view hardwareCode);

// What a boot loader of an Aurex controller without a colour screen reports in the place of the model.
inline constexpr std::string_view kAurexBootText = "BOOT";

// The model by which the files for a controller are told, from what it reports: its first 7 characters, or in the boot
// loader what its hardware code says.
[[nodiscard]] std::string AurexOsModelText(std::string_view reported, std::string_view hardwareCode);

}  // namespace kv
