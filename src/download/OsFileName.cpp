#include "download/OsFileName.h"

#include <algorithm>
#include <array>

#include "base/AnsiText.h"
#include "base/PathText.h"
#include "base/Texts.h"
#include "download/FileFields.h"

namespace kv {
namespace {

constexpr std::size_t kOsName = 19;
constexpr std::size_t kFontsName = 18;
constexpr std::size_t kVersionAt = 10;  // in both
constexpr std::size_t kBuildAt = 13;

constexpr std::string_view kCompactExtension = ".OSI";

struct CompactModel {
  std::string_view model;
  std::string_view familyCode;
  std::string_view display;  // empty: not known
};

constexpr std::array kCompactModels = {
    CompactModel{"Q50", "50", ""},          CompactModel{"Q51", "51", "One Line"},
    CompactModel{"Q58", "58", "Two Lines"}, CompactModel{"PX1", "BR", "Two Lines"},
    CompactModel{"PR1", "R1", ""},
};

// In one byte a character, so that no character is cut.
std::string LastCharacters(std::string_view name, std::size_t count) {
  const std::string ansi = Utf8ToAnsi(name);
  return ansi.substr(ansi.size() - std::min(count, ansi.size()));
}

std::optional<int> NumberIn(std::string_view text, std::size_t offset, std::size_t size) {
  return offset + size <= text.size() ? DigitsAt(text, offset, size) : std::nullopt;
}

std::optional<OsNumber> OsNumberIn(std::string_view end, std::size_t buildDigits) {
  const auto version = NumberIn(end, kVersionAt, 3);
  const auto build = NumberIn(end, kBuildAt, buildDigits);
  if (!version || !build) return std::nullopt;
  return OsNumber{*version, *build};
}

std::string Padded(int number, std::size_t digits) {
  const std::string text = std::to_string(number);
  return std::string(digits - std::min(digits, text.size()), '0') + text;
}

}  // namespace

std::string GetFileName(const std::filesystem::path& file) {
  return Utf8FromPath(file.filename());
}

std::string AurexOsTypeIn(std::string_view name) {
  return AnsiToUtf8(LastCharacters(name, kOsName).substr(0, 9));
}

std::optional<OsNumber> AurexOsNumberIn(std::string_view name) {
  return OsNumberIn(LastCharacters(name, kOsName), 2);
}

std::optional<OsNumber> FontsNumberIn(std::string_view name) {
  return OsNumberIn(LastCharacters(name, kFontsName), 1);
}

std::optional<int> FontsVersionIn(std::string_view name) {
  return NumberIn(LastCharacters(name, kFontsName), kVersionAt, 3);
}

std::optional<CompactOsName> CompactOsNameIn(std::string_view name) {
  constexpr std::size_t kLength = 12;  // "Q50v4602.OSI"
  const std::string upper = UpperCased(name);
  if (upper.size() != kLength || upper[3] != 'V' || !upper.ends_with(kCompactExtension)) return std::nullopt;
  const auto model = std::ranges::find(kCompactModels, std::string_view(upper).substr(0, 3), &CompactModel::model);
  const auto version = NumberIn(upper, 4, 3);
  const auto build = NumberIn(upper, 7, 1);
  if (model == kCompactModels.end() || !version || !build) return std::nullopt;
  return CompactOsName{std::string(model->model), {*version, *build}};
}

std::string CompactModelText(std::string_view model) {
  const auto row = std::ranges::find(kCompactModels, model, &CompactModel::model);
  if (row == kCompactModels.end()) return "";
  return "Family code " + std::string(row->familyCode) +
         (row->display.empty() ? "" : ", display: " + std::string(row->display));
}

std::string AurexOsName(std::string_view osModel, const OsNumber& number) {
  return "Aurex" + std::string(osModel) + "v" + Padded(number.version, 3) + Padded(number.build, 2) + ".kos";
}

std::string FontsName(const OsNumber& number) {
  return "AurexFontv" + Padded(number.version, 3) + Padded(number.build, 1) + ".kft";
}

std::string CompactOsFileName(std::string_view osModel, const OsNumber& number) {
  return std::string(osModel) + "v" + Padded(number.version, 3) + Padded(number.build, 1) +
         std::string(kCompactExtension);
}

std::string_view ExpectedAurexOsType(std::string_view model) {
  if (model == "K220-22") return "AurexK220";
  if (model == "K220-32") return "AurexK222";
  return "AurexK330";
}

std::string_view AurexModelOfHardware(std::string_view hardwareCode) {
  if (hardwareCode == "10") return "K220-22";
  if (hardwareCode == "20") return "K220-32";
  return "K380-28";
}

std::string AurexOsModelText(std::string_view reported, std::string_view hardwareCode) {
  constexpr std::size_t kCharacters = 7;
  return std::string(reported == kAurexBootText ? AurexModelOfHardware(hardwareCode) : reported.substr(0, kCharacters));
}

}  // namespace kv
