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

// clang-format off
constexpr Model kModels[] = {
    // name                        reported                     boot text       hw    f  operands   memory  version  O/S     b.  image   panel
    {"K220-22-R1",                "K220-22-R1",                "BOOT",         "10", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K220", kTextPanel},
    {"K220-32",                   "K220-32",                   "BOOT",         "20", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K222", kTextPanel},
    {"K330",                      "K330",                      "BOOT",         "33", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel},
    {"K360",                      "K360",                      "BOOT",         "36", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel},
    {"K380-28",                   "K380-28",                   "BOOT",         "38", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel},
    {"K390",                      "K390",                      "BOOT",         "39", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel},
    {"K630",                      "K630",                      "BOOT",         "63", A, kPlainOps, kPlain, kDigits, "4.60", 19, "K330", kTextPanel},
    {"K230",                      "K230",                      "BOOT",         "23", A, kPlainOps, kPlain, kFields, "1.10", 19, "K330", kTextPanel},
    {"K670-67-C30 / K390-29-C30", "K670-67-C30 / K390-29-C30", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K670-67-T40 / K390-29-T40", "K670-67-T40 / K390-29-T40", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K670-67-T34 / K390-29-T34", "K670-67-T34 / K390-29-T34", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K670-67-T20 / K390-29-T20", "K670-67-T20 / K390-29-T20", "CLR BOOT",     "67", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K660-66-C30",               "K660-66-C30",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K660-66-T40",               "K660-66-T40",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K660-66-T34",               "K660-66-T34",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K660-66-T20",               "K660-66-T20",               "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K660-66-T25B",              "K660-66-T25B",              "CLR BOOT",     "66", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K450-45",                   "K450-45",                   "K450-45-BOOT", "45", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K530",                      "K530",                      "K530-J-BOOT",  "53", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K530-J",                    "K530-J",                    "K530-J-BOOT",  "53", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K2040",                     "K2040",                     "K2040 BOOT",   "24", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K2210",                     "K2210",                     "K2210 BOOT",   "21", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"K800",                      "K800",                      "CLR BOOT",     "80", A, kLargeOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"TQ45",                      "TQ45",                      "CLR BOOT",     "T4", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"TQ53",                      "TQ53",                      "CLR BOOT",     "T5", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"TQ80",                      "TQ80",                      "CLR BOOT",     "T8", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"TQ80-OEM",                  "TQ80-OEM",                  "CLR BOOT",     "T8", A, kPlainOps, kLarge, kFields, "1.10", 19, "CLR ", kTouchPanel},
    {"AurexQ50",                  "AurexQ50",                  "BOOT",         "50", A, kSmallOps, kSmall, kDigits, "4.60", 19, "K330", kTextPanel},
    {"Q50",                       "Q50-2-R34",                 "BQ50",         "50", C, kSmallOps, kSmall, kDigits, "4.60", 19, "Q50",  kTextPanel},
    {"Q50Net",                    "Q50-2-R34",                 "BQ50",         "5N", C, kSmallOps, kSmall, kDigits, "4.60", 19, "Q50",  kTextPanel},
    {"Q51",                       "Q51-2-R34",                 "BQ51",         "51", C, kPlainOps, kSmall, kDigits, "4.60", 19, "Q51",  kTextPanel},
    {"Q58",                       "Q58-2-R34",                 "BQ58",         "58", C, kPlainOps, kSmall, kDigits, "4.60", 19, "Q58",  kTextPanel},
    {"PX1",                       "PX1-R8",                    "BPX1",         "P8", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PX1",  kTextPanel},
    {"PR1",                       "PR1-R8",                    "BPR1",         "R8", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PR1",  0},
    {"BRIO",                      "BRIO-R16",                  "BRBOOT",       "16", C, kPlainOps, kSmall, kDigits, "4.60", 19, "PX1",  0},
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
