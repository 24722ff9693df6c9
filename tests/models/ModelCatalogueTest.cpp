#include "models/ModelCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "models/ModelFit.h"

namespace kv {
namespace {

using Predicate = bool (*)(std::string_view);
using Texts = std::vector<const char*>;

constexpr auto kPredicates = std::to_array<std::pair<char, Predicate>>({
    {'m', IsCompactModel},
    {'d', IsCompactDriverModel},
    {'o', IsCompactOrBrio},
    {'r', IsBrioModel},
    {'b', IsBrioCode},
    {'i', IsCompactIdentification},
    {'c', IsColourModel},
    {'x', IsExtendedColourModel},
    {'3', IsK230Model},
});

TEST(ModelCatalogue, PutsEveryModelIntoItsGroups) {
  const std::pair<std::string, Texts> rows[] = {
      {"", {"q50", "Q50 ", "Q50-", "Q51", "Q58", "Q58-2-R34", "PX1", "PR1", "B", "BOOT", "K660", "K220-22-R1", ""}},
      {"mdo", {"Q50", "Q50Net"}},
      {"m", {"AurexQ50"}},
      {"orbi", {"BRIO", "Brio"}},
      {"or", {"brio"}},
      {"bi", {"BRIO-R16", "BRBOOT", "Br1"}},
      {"i", {"Q50-2-R34", "Q51-2-R34"}},
      {"cx", {"K670-67-C30 / K390-29-C30", "K670-67-T40 / K390-29-T40", "K670-67-T34 / K390-29-T34"}},
      {"cx", {"K670-67-T20 / K390-29-T20", "K2040", "K2040 BOOT", "K2040/K2210 FACTORY BOOT", "K2210"}},
      {"cx", {"K2210 BOOT", "K450-45", "K450-45-BOOT", "K530-J", "K800"}},
      {"x", {"K670-67-C30", "K2041"}},  // not one of the full texts
      {"c", {"FACTORY BOOT", "CLR BOOT", "K660-66-C30", "K660-66-T40", "K660-66-T34", "K660-66-T20"}},
      {"c", {"K660-T25B", "K660-66-T25B", "TQ45", "TQ53", "TQ80-OEM"}},
      {"3", {"K230", "K230-9"}},
  };
  for (const auto& [letters, models] : rows) {
    for (const char* model : models) {
      std::string held;
      for (const auto& [letter, holds] : kPredicates) held.append(holds(model) ? 1 : 0, letter);
      EXPECT_EQ(held, letters) << model;
    }
  }
}

TEST(ModelCatalogue, StartsTheDesignerWithTheCodeOfTheModel) {
  const std::pair<const char*, Texts> rows[] = {
      {"", {"brio", "Q51", "AurexQ501", "K33", "K660-66-C30", ""}},
      {"K3XX", {"K330", "K360", "K380-28", "K390", "K630"}},
      {"Q50_BRIO", {"BRIO", "Brio-R16", "Q50", "Q50Net", "AurexQ50"}},
      {"K2040", {"K2040 BOOT"}},
      {"TQ80", {"TQ80"}},
      {"TQ80-OEM", {"TQ80-OEM", "TQ80 for OEMs"}},
  };
  for (const auto& [code, models] : rows) {
    for (const char* model : models) EXPECT_EQ(DesignerModelCode(model), code) << model;
  }
}

TEST(ModelCatalogue, DeletesTheGridsOnlyWhenAModelLeavesItsGroup) {
  constexpr const char* kLarge = "K670-67-T40 / K390-29-T40";
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"K220-22-R1", kLarge, false}, {kLarge, "K220-22-R1", true}, {"K220-22-R1", "Q50", true},
      {"Q50", "K220-22-R1", true},   {"Q50", "AurexQ50", false},   {"K230", "K220-22-R1", true},
      {"K230", "K450-45", false},    {"K450-45", "K230", true},  // within the wide group, but out of the extended one
  };
  for (const auto& [from, to, mustGo] : rows) EXPECT_EQ(GridFilesMustGo(from, to), mustGo) << from << " -> " << to;
}

}  // namespace
}  // namespace kv
