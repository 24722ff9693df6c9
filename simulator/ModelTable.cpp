#include "simulator/ModelTable.h"

#include <algorithm>

namespace sim {
namespace {

constexpr Family A = Family::Aurex;
constexpr Family C = Family::Compact;
constexpr OperandGroup kPlainOps = OperandGroup::Aurex;
constexpr OperandGroup kLargeOps = OperandGroup::LargeMemory;
constexpr OperandGroup kSmallOps = OperandGroup::Compact;
constexpr MemoryLayout kSmall = MemoryLayout::Small;
constexpr MemoryLayout kPlain = MemoryLayout::Plain;
constexpr MemoryLayout kLarge = MemoryLayout::Large;
constexpr VersionStyle kDigits = VersionStyle::Digits;
constexpr VersionStyle kFields = VersionStyle::Fields;
constexpr std::uint8_t kTextPanel = kDisplay | kKeypad;
constexpr std::uint8_t kTouchPanel = kDisplay | kColour;
constexpr Display kNone;
constexpr Display k16x2 = TextDisplay(16, 2);
constexpr Display k20x4 = TextDisplay(20, 4);
constexpr Display k20x8 = TextDisplay(20, 8);
constexpr Display k480x272 = ColourDisplay(480, 272);
constexpr Display k640x480 = ColourDisplay(640, 480);
constexpr Display k800x480 = ColourDisplay(800, 480);
constexpr Display k1024x600 = ColourDisplay(1024, 600);

// clang-format off
constexpr Model kModels[] = {
    // name                        reported                     boot text       hw    f  operands   memory  version  O/S     b.  image   panel        display
    {"K220-22-R1",                "K220-22-R1",                "BOOT",         "10", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K220", kTextPanel,  k16x2},
    {"K220-32",                   "K220-32",                   "BOOT",         "20", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K222", kTextPanel,  k20x4},
    {"K330",                      "K330",                      "BOOT",         "33", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel,  k20x4},
    {"K360",                      "K360",                      "BOOT",         "36", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel,  k20x4},
    {"K380-28",                   "K380-28",                   "BOOT",         "38", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel,  k20x4},
    {"K390",                      "K390",                      "BOOT",         "39", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel,  k20x4},
    {"K630",                      "K630",                      "BOOT",         "63", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel,  k20x4},
    {"K230",                      "K230",                      "BOOT",         "23", A, kPlainOps, kPlain, kFields, "1.10", 19, "K330", kTextPanel,  k20x8},
    {"K670-67-C30 / K390-29-C30", "K670-67-C30 / K390-29-C30", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k800x480},
    {"K670-67-T40 / K390-29-T40", "K670-67-T40 / K390-29-T40", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k800x480},
    {"K670-67-T34 / K390-29-T34", "K670-67-T34 / K390-29-T34", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k800x480},
    {"K670-67-T20 / K390-29-T20", "K670-67-T20 / K390-29-T20", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k800x480},
    {"K660-66-C30",               "K660-66-C30",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K660-66-T40",               "K660-66-T40",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K660-66-T34",               "K660-66-T34",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K660-66-T20",               "K660-66-T20",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K660-66-T25B",              "K660-66-T25B",              "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K450-45",                   "K450-45",                   "K450-45-BOOT", "45", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"K530",                      "K530",                      "K530-J-BOOT",  "53", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k640x480},
    {"K530-J",                    "K530-J",                    "K530-J-BOOT",  "53", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k640x480},
    {"K2040",                     "K2040",                     "K2040 BOOT",   "24", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k640x480},
    {"K2210",                     "K2210",                     "K2210 BOOT",   "21", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k640x480},
    {"K800",                      "K800",                      "CLR BOOT",     "80", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k1024x600},
    {"TQ45",                      "TQ45",                      "CLR BOOT",     "T4", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k480x272},
    {"TQ53",                      "TQ53",                      "CLR BOOT",     "T5", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k640x480},
    {"TQ80",                      "TQ80",                      "CLR BOOT",     "T8", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k1024x600},
    {"TQ80-OEM",                  "TQ80-OEM",                  "CLR BOOT",     "T8", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel, k1024x600},
    {"AurexQ50",                  "AurexQ50",                  "BOOT",         "50", A, kSmallOps, kSmall, kDigits, "4.60", 19, "K330", kTextPanel,  k16x2},
    {"Q50",                       "Q50-2-R34",                 "BQ50",         "50", C, kSmallOps, kSmall, kDigits, "4.60", 19, "Q50",  kTextPanel,  k16x2},
    {"Q50Net",                    "Q50-2-R34",                 "BQ50",         "5N", C, kSmallOps, kSmall, kDigits, "4.60", 19, "Q50",  kTextPanel,  k16x2},
    {"Q51",                       "Q51-2-R34",                 "BQ51",         "51", C, kPlainOps, kSmall, kDigits, "4.60", 19, "Q51",  kTextPanel,  k20x4},
    {"Q58",                       "Q58-2-R34",                 "BQ58",         "58", C, kPlainOps, kSmall, kDigits, "4.60", 19, "Q58",  kTextPanel,  k20x4},
    {"PX1",                       "PX1-R8",                    "BPX1",         "P8", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PX1",  kTextPanel,  k16x2},
    {"PR1",                       "PR1-R8",                    "BPR1",         "R8", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PR1",  0,           kNone},
    {"BRIO",                      "BRIO-R16",                  "BRBOOT",       "16", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PX1",  0,           kNone},
};

struct ShortName {
  std::string_view shortName;
  std::string_view name;
};

constexpr ShortName kShortNames[] = {
    {"K220",        "K220-22-R1"},
    {"K220-22",     "K220-22-R1"},
    {"K380",        "K380-28"},
    {"K670",        "K670-67-C30 / K390-29-C30"},
    {"K670-C30",    "K670-67-C30 / K390-29-C30"},
    {"K670-67-C30", "K670-67-C30 / K390-29-C30"},
    {"K390-29-C30", "K670-67-C30 / K390-29-C30"},
    {"K670-T40",    "K670-67-T40 / K390-29-T40"},
    {"K670-67-T40", "K670-67-T40 / K390-29-T40"},
    {"K390-29-T40", "K670-67-T40 / K390-29-T40"},
    {"K670-T34",    "K670-67-T34 / K390-29-T34"},
    {"K670-67-T34", "K670-67-T34 / K390-29-T34"},
    {"K390-29-T34", "K670-67-T34 / K390-29-T34"},
    {"K670-T20",    "K670-67-T20 / K390-29-T20"},
    {"K670-67-T20", "K670-67-T20 / K390-29-T20"},
    {"K390-29-T20", "K670-67-T20 / K390-29-T20"},
    {"K660",        "K660-66-C30"},
    {"K450",        "K450-45"},
};
// clang-format on

}  // namespace

std::span<const Model> AllModels() {
  return kModels;
}

const Model* FindModel(std::string_view name) {
  const auto alias = std::ranges::find(kShortNames, name, &ShortName::shortName);
  const std::string_view wanted = alias == std::end(kShortNames) ? name : alias->name;
  auto model = std::ranges::find(kModels, wanted, &Model::name);
  if (model == std::end(kModels)) model = std::ranges::find(kModels, wanted, &Model::reported);
  return model == std::end(kModels) ? nullptr : &*model;
}

}  // namespace sim
