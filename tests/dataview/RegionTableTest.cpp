// What is selected becomes regions, by every rule; what the user has defined before is not lost.
#include "dataview/RegionTable.h"

#include <gtest/gtest.h>

#include "dataview/OperandStore.h"
#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

using enum OperandTypeCode;

constexpr const char* kColour = "K220-22-R1";
constexpr const char* kCompact = "Q50";

std::vector<std::string> TextOf(const RegionTable& table) {
  std::vector<std::string> texts;
  for (const RegionRow& row : table.Rows()) {
    texts.push_back(std::string(TypeName(row.region.type)) + " " + std::to_string(row.region.from) + ".." +
                    std::to_string(row.region.to));
  }
  return texts;
}

struct Case {
  const char* what;
  const char* model;
  std::vector<Region> before;
  GridSelection selection;  // rows are types, columns addresses + 1
  std::vector<std::string> after;
  bool overlap = false;
};

TEST(AddRegion, SelectionsBecomeRegions) {
  constexpr std::int32_t kLast = 1 << 20;
  const Case cases[] = {
      {"more than one request", kColour, {}, {1, 1, 1, 250}, {"MB 0..119", "MB 120..239", "MB 240..249"}},
      {"two types", kColour, {}, {1, 6, 2, 10}, {"MB 5..9", "MI 5..9"}},
      {"drawn from right to left, upwards", kColour, {}, {2, 10, 1, 6}, {"MB 5..9", "MI 5..9"}},
      {"cut at the last operand", kColour, {}, {3, 20, 3, kLast}, {"MF 19..23"}},
      {"past the last operand", kColour, {}, {3, 25, 3, 30}, {}},
      {"a type that the model lacks", kColour, {}, {6, 1, 6, 10}, {}},
      {"the same on the other family", kCompact, {}, {5, 1, 6, 10}, {"DBI 0..9"}},
      {"nothing", kColour, {}, {}, {}},
      {"touching at one end", kColour, {{20, 30, MI}}, {2, 11, 2, 21}, {"MI 20..30"}, true},
      {"around an old one", kColour, {{20, 30, MI}}, {2, 1, 2, 60}, {"MI 20..30"}, true},
      {"within an old one", kColour, {{20, 30, MI}}, {2, 26, 2, 26}, {"MI 20..30"}, true},
      {"beside an old one", kColour, {{20, 30, MI}}, {2, 11, 2, 20}, {"MI 20..30", "MI 10..19"}},
      {"overlap of one type alone", kColour, {{0, 9, MI}}, {1, 1, 3, 5}, {"MI 0..9", "MB 0..4", "MF 0..4"}, true},
      {"a whole row takes the place of its regions",
       kColour,
       {{0, 9, MF}, {3, 4, MI}, {20, 23, MF}},
       {3, 0, 3, kLast},
       {"MI 3..4", "MF 0..23"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    RegionTable table;
    std::vector<RegionRow> rows;
    for (const Region& region : c.before) rows.push_back(NewRegionRow(region));
    table.Assign(rows);
    const auto result = table.AddSelection(c.selection, {}, OperandStore(c.model));
    EXPECT_EQ(TextOf(table), c.after);
    EXPECT_EQ(result.overlap, c.overlap);
  }
}

// A region may end past the last operand, and a controller tell more than was asked.
TEST(OperandStore, TakesNothingPastTheLastAddress) {
  OperandStore store(kColour);
  const std::vector<std::string> told(5, "1");
  const Region changed = store.SetRead({22, 26, MF}, told, Instant());
  EXPECT_EQ(std::pair(changed.from, changed.to), std::pair(22, 23));
  EXPECT_EQ(store.Texts({22, 25, MF}), (std::vector<std::string>{"1", "1", "", ""}));
  EXPECT_EQ(store.SetRead({0, 0, MI}, told, Instant()).to, 0);
  EXPECT_EQ(store.Text(MI, 1), "");
  EXPECT_TRUE(store.SetRead({24, 26, MF}, told, Instant()).IsEmpty());
  EXPECT_FALSE(store.Edit(MF, 24, "1") || store.Edit(MF, -1, "1") || store.Edit(DBI, 0, "1"));
  EXPECT_EQ(store.Origin(MF, 24), CellOrigin::None);
  EXPECT_FALSE(store.Restore(MF, 24, {}, {"1", CellOrigin::Edited}));
}

}  // namespace
}  // namespace kv::mdlDataTypesView
