#include "models/ModelCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

// clang-format off: the tables are laid out by hand
namespace kv {
namespace {

using Predicate = bool (*)(std::string_view);

// Letters: m IsCompactModel, d IsCompactDriverModel, o IsCompactOrBrio, r IsBrioModel, b IsBrioCode,
// i IsCompactIdentification, c IsColourModel, x IsExtendedColourModel, 3 IsK230Model.
constexpr std::array<std::pair<char, Predicate>, 9> kPredicates = {
   { {'m', IsCompactModel}, {'d', IsCompactDriverModel}, {'o', IsCompactOrBrio}, {'r', IsBrioModel}, {'b', IsBrioCode},
    {'i', IsCompactIdentification}, {'c', IsColourModel}, {'x', IsExtendedColourModel}, {'3', IsK230Model}}};

std::string Holding(std::string_view model) {
  std::string letters;
  for (const auto& [letter, holds] : kPredicates) {
    if (holds(model)) letters += letter;
  }
  return letters;
}

TEST(ModelCatalogue, PutsEveryModelIntoItsGroups) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"Q50", "mdo"}, {"Q50Net", "mdo"}, {"AurexQ50", "m"}, {"q50", ""}, {"Q50 ", ""}, {"Q51", ""}, {"Q58", ""},
      {"PX1", ""}, {"PR1", ""}, {"BRIO", "orbi"}, {"Brio", "orbi"}, {"brio", "or"}, {"BRIO-R16", "bi"},
      {"BRBOOT", "bi"}, {"B", ""}, {"Q50-2-R34", "i"}, {"Q51-2-R34", "i"}, {"Q58-2-R34", ""}, {"Q50-", ""},
      {"K670-67-C30 / K390-29-C30", "cx"}, {"K670-67-T40 / K390-29-T40", "cx"}, {"K670-67-T34 / K390-29-T34", "cx"},
      {"K670-67-T20 / K390-29-T20", "cx"},
      {"K670-67-C30", "x"},  // not one of the full texts
      {"FACTORY BOOT", "c"}, {"CLR BOOT", "c"}, {"BOOT", ""}, {"K660-66-C30", "c"}, {"K660-66-T40", "c"},
      {"K660-66-T34", "c"}, {"K660-66-T20", "c"}, {"K660-T25B", "c"}, {"K660-66-T25B", "c"}, {"K660", ""},
      {"K2040", "cx"}, {"K2040 BOOT", "cx"}, {"K2040/K2210 FACTORY BOOT", "cx"}, {"K2041", "x"}, {"K2210", "cx"},
      {"K2210 BOOT", "cx"}, {"K450-45", "cx"}, {"K450-45-BOOT", "cx"}, {"K530-J", "cx"}, {"K800", "cx"}, {"TQ45", "c"},
      {"TQ53", "c"}, {"TQ80-OEM", "c"}, {"k450-45", ""}, {"K45", ""}, {"K230", "3"}, {"K230-9", "3"},
      {"K220-22-R1", ""}, {"K330", ""}, {"", ""}};
  for (const auto& [model, letters] : rows) EXPECT_EQ(Holding(model), letters) << model;
}

TEST(ModelCatalogue, StartsTheDesignerWithTheCodeOfTheModel) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"K330", "K3XX"}, {"K360", "K3XX"}, {"K380-28", "K3XX"}, {"K390", "K3XX"}, {"K630", "K3XX"},
      {"K220-22-R1", "K220"}, {"K230", "K230"}, {"K670-67-C30 / K390-29-C30", "K670"}, {"K450-45", "K450"},
      {"BRIO", "Q50_BRIO"}, {"Brio-R16", "Q50_BRIO"}, {"brio", ""}, {"K2040 BOOT", "K2040"}, {"K2210", "K2210"},
      {"TQ45", "TQ45"}, {"TQ53", "TQ53"}, {"K530-J", "K530"}, {"TQ80", "TQ80"}, {"TQ80-OEM", "TQ80-OEM"},
      {"TQ80 for OEMs", "TQ80-OEM"}, {"K800", "K800"}, {"Q50", "Q50_BRIO"}, {"Q50Net", "Q50_BRIO"},
      {"AurexQ50", "Q50_BRIO"}, {"AurexQ501", ""}, {"Q51", ""}, {"K33", ""}, {"K660-66-C30", ""}, {"", ""}};
  for (const auto& [model, code] : rows) EXPECT_EQ(DesignerModelCode(model), code) << model;
}

TEST(ModelCatalogue, DeletesTheGridsOnlyWhenAModelLeavesItsGroup) {
  struct Row {
    std::string from, to;
    bool mustGo;
  };
  const std::vector<Row> rows = {
      {"K220-22-R1", "K670-67-T40 / K390-29-T40", false}, {"K670-67-T40 / K390-29-T40", "K220-22-R1", true},
      {"K220-22-R1", "Q50", true}, {"Q50", "K220-22-R1", true}, {"Q50", "AurexQ50", false}, {"Q51", "Q50", true},
      {"K230", "K220-22-R1", true}, {"K220-22-R1", "K230", false}, {"K230", "K450-45", false},
      {"K450-45", "K230", true},  // within the wide group, but out of the extended one
      {"K450-45", "K800", false}, {"K660-66-C30", "K220-22-R1", false}, {"K330", "K330", false}};
  for (const Row& row : rows) EXPECT_EQ(GridFilesMustGo(row.from, row.to), row.mustGo) << row.from << " -> " << row.to;
}

TEST(ModelCatalogue, OffersEachModelOnceAndFindsTheOneThatAControllerReports) {
  const auto offered = SelectableModels();
  for (const auto model : offered) EXPECT_EQ(std::ranges::count(offered, model), 1) << model;
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"Q50-2-R34", "Q50"}, {"Q51-2-R34", "Q51"}, {"Q58-2-R34", "Q58"}, {"PX1-R8", "PX1"}, {"PR1-R8", "PR1"},
      {"BRIO-R16", "BRIO"}, {"Br1", "BRIO"}, {"K670-67-T40 / K390-29-T40", "K670-67-T40 / K390-29-T40"},
      {"K220-22-R1", "K220-22-R1"}};
  for (const auto& [reported, model] : rows) {
    EXPECT_EQ(ModelOfIdentification(reported), model);
    EXPECT_EQ(std::ranges::count(offered, model), 1) << model;
  }
  EXPECT_EQ(ModelOfIdentification("CLR BOOT"), "CLR BOOT");
}

}  // namespace
}  // namespace kv
