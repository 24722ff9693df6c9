#include "download/CompactController.h"

#include <algorithm>
#include <array>

#include "link/OsVersion.h"

namespace kv {
namespace {

struct Row {
  std::string_view begin;  // of the model text, or in the boot loader's case the hardware code
  CompactKind kind;
  bool isQ58;
  bool isInBoot;
};

// clang-format off
constexpr Row kModelTexts[] = {
    {"Q50",    CompactKind::Q50,      false, false},
    {"BQ50",   CompactKind::Q50,      false, true},
    {"Q51",    CompactKind::Q51OrQ58, false, false},
    {"BQ51",   CompactKind::Q51OrQ58, false, true},
    {"Q58",    CompactKind::Q51OrQ58, true,  false},
    {"BQ58",   CompactKind::Q51OrQ58, true,  true},
    {"PX1",    CompactKind::PX1,      false, false},
    {"BPX1",   CompactKind::PX1,      false, true},
    {"PR1",    CompactKind::PR1,      false, false},
    {"BPR1",   CompactKind::PR1,      false, true},
    {"BRBOOT", CompactKind::PX1,      false, true},
    {"BR",     CompactKind::PX1,      false, false},
    {"Br",     CompactKind::PX1,      false, false},
};

// For a boot loader that only says "BOOT".
constexpr Row kHardwareCodes[] = {
    {"50", CompactKind::Q50,      false, true},
    {"5N", CompactKind::Q50,      false, true},
    {"51", CompactKind::Q51OrQ58, false, true},
    {"58", CompactKind::Q51OrQ58, true,  true},
    {"P8", CompactKind::PX1,      false, true},
    {"R8", CompactKind::PR1,      false, true},
    {"16", CompactKind::PX1,      false, true},
};
// clang-format on

std::string_view TakeField(std::string_view& text) {
  const std::size_t end = std::min(text.find('|'), text.size());
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return field;
}

template <std::size_t N>
const Row* FindRow(const Row (&rows)[N], std::string_view text) {
  const auto row =
      std::ranges::find_if(rows, [text](const Row& candidate) { return text.starts_with(candidate.begin); });
  return row == std::end(rows) ? nullptr : &*row;
}

}  // namespace

std::string CompactController::OsModel() const {
  switch (kind) {
    case CompactKind::Q50:
      return "Q50";
    case CompactKind::Q51OrQ58:
      return isQ58 ? "Q58" : "Q51";
    case CompactKind::PX1:
      return "PX1";
    case CompactKind::PR1:
      return "PR1";
  }
  return "";
}

std::optional<CompactController> ParseCompactIdentification(std::string_view data) {
  const std::string_view model = TakeField(data);
  const std::string_view hardware = TakeField(data);
  const Row* row = model == "BOOT" ? FindRow(kHardwareCodes, hardware) : FindRow(kModelTexts, model);
  if (row == nullptr) return std::nullopt;
  return CompactController{row->kind, row->isQ58, row->isInBoot, ParsePlainOsVersion(TakeField(data)).value_or(0)};
}

}  // namespace kv
