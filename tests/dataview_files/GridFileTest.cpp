#include "base/Hex.h"
#include "dataview/files/GridFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/Crc32.h"
#include "dataview/files/GridText.h"
#include "tests/support/Damage.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::mdlDataTypesView {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using enum OperandTypeCode;

constexpr const char* kLarge = "K670-67-T40 / K390-29-T40";
constexpr const char* kSmall = "K220-22-R1";

GridState SomeState(std::string_view model) {
  GridState state{OperandStore(model), {}, {}};
  const std::vector<std::string> read = {"12", "-13", "14"};
  state.operands.SetRead({4, 6, MI}, read, Instant());
  state.operands.Edit(MI, 5, "a\tb\r\n\\n");
  state.operands.Edit(MI, 9, "\xC3\xBC");
  state.operands.Edit(XDW, 63, "4294967295");
  RegionRow row = NewRegionRow({4, 6, MI});
  row.description = "Gr\xC3\xBC\xC3\x9F\x65\tand more \\ ";
  row.size = SizeCode::Bit8;
  row.format = FormatCode::Hex;
  row.values = "old";
  RegionRow fromFile = NewRegionRow({0, 0, TimerPreset});
  fromFile.values = "1\\0";
  fromFile.isFromFile = true;
  state.regions.Assign({row, fromFile});
  state.settings.hidden.Set(3, true);
  state.settings.hidden.Set(22, true);
  state.settings.regionColumnWidths = {0, 120, 60};
  state.settings.operandColumnWidth = 70;
  state.settings.currentRow = 22;
  state.settings.currentColumn = 64;
  return state;
}

class GridFile : public ::testing::Test {
 protected:
  GridFile() { fs::create_directories(mFolder.Path() / "Sessions" / "Plant"); }

  fs::path SessionFile(const char* name) const { return mFolder.Path() / "Sessions" / "Plant" / name; }
  LoadedGrids Load(const char* model = kLarge) const { return LoadGrids(SessionGridFiles(mPaths, "Plant"), model); }

  TemporaryFolder mFolder;
  ProgramPaths mPaths{mFolder.Path()};
};

// What is written of a state is all that is kept of it.
void ExpectSame(const GridState& loaded, const GridState& saved) {
  EXPECT_EQ(PrintRegionsGrid(loaded, "Plant"), PrintRegionsGrid(saved, "Plant"));
  EXPECT_EQ(PrintOperandsGrid(loaded, "Plant"), PrintOperandsGrid(saved, "Plant"));
  EXPECT_EQ(loaded.operands.EditedCount(), saved.operands.EditedCount());
}

TEST_F(GridFile, BringsBothGridsBackAsTheyWere) {
  const GridState state = SomeState(kLarge);
  ASSERT_TRUE(SaveSessionGrids(mPaths, state, "Plant"));
  const LoadedGrids loaded = Load();
  EXPECT_TRUE(loaded.isWhole);
  EXPECT_THAT(loaded.notes, ElementsAre());
  ExpectSame(loaded.state, state);
  EXPECT_EQ(loaded.state.regions.Rows()[0].values, "") << "only those of a file are kept";
  EXPECT_EQ(loaded.state.operands.ReadAt(MI, 4), Instant::min());
  EXPECT_THAT(
      TemporaryFolder::Content(SessionFile("vsfRegions_1.vsf")),
      HasSubstr("TELEPANEL-REGIONS 1\nsession Plant\nmodel K670-67-T40 / K390-29-T40\nwidths 0 120 60\n"
                "region 2 4 6 1 4 Gr\xC3\xBC\xC3\x9F\x65\\tand more \\\\ \nregion 13 0 0 4 5 \nfilevalues 1\\\\0\n"
                "check "));
  EXPECT_THAT(
      TemporaryFolder::Content(SessionFile("vsfOperands_1.vsf")),
      HasSubstr("cursor 22 64\nwidth 70\nhidden 3 22\nread 2 4\t12\nedited 2 5\ta\\tb\\r\\n\\\\n\nread 2 6\t14\n"
                "edited 2 9\t\xC3\xBC\nedited 22 63\t4294967295\ncheck "));
}

TEST_F(GridFile, OfALargerModelGivesWhatFits) {
  GridState state = SomeState(kLarge);
  state.operands.Edit(MB, 5000, "1");
  state.settings.currentColumn = 8000;
  RegionRow tooLarge = NewRegionRow({5000, 5001, MB});
  tooLarge.values = "1 1";
  tooLarge.isFromFile = true;
  state.regions.Assign({NewRegionRow({1, 2, MB}), tooLarge});
  ASSERT_TRUE(SaveSessionGrids(mPaths, state, "Plant"));
  const LoadedGrids loaded = Load(kSmall);
  EXPECT_FALSE(loaded.isWhole);
  EXPECT_THAT(loaded.notes, ElementsAre(HasSubstr("1 saved values of K670"), HasSubstr("1 saved regions of K670")));
  for (const std::string name : {"vsfRegions_1.vsf", "vsfOperands_1.vsf"}) {  // the next save writes over these
    EXPECT_EQ(TemporaryFolder::Content(SessionFile((name + ".old").c_str())),
              TemporaryFolder::Content(SessionFile(name.c_str())));
  }
  EXPECT_EQ(loaded.state.regions.Regions(), (std::vector<Region>{{1, 2, MB}}));
  EXPECT_EQ(loaded.state.regions.Rows()[0].values, "") << "not those of the one that was left out";
  EXPECT_EQ(loaded.state.operands.Text(MI, 4), "12");
  EXPECT_EQ(loaded.state.settings.currentColumn, 4096);
}

// With the check that it has, and with one that fits: a program of the past or of the future may have written it.
TEST_F(GridFile, ThatIsDamagedTellsWhere) {
  const auto told = [](const auto& read, const auto& print) {
    if (!read) return std::to_string(read.error().line) + ": " + read.error().what;
    return std::to_string(read->leftOut) + " left out of " + print(*read);
  };
  const auto tell = [&](const std::string& bytes) {
    const auto rows = [](const RegionsGrid& grid) {
      GridState state{OperandStore(kSmall), {}, {}};
      state.regions.Assign(grid.rows);
      state.settings.regionColumnWidths = grid.columnWidths;
      return PrintRegionsGrid(state, grid.owner.session + " of " + grid.owner.model);
    };
    const auto cells = [](const OperandsGrid& grid) {
      return PrintOperandsGrid({grid.operands, {}, grid.settings}, grid.owner.session + " of " + grid.owner.model);
    };
    return bytes.starts_with("TELEPANEL-R") ? told(ParseRegionsGrid(bytes, kSmall), rows)
                                            : told(ParseOperandsGrid(bytes, kSmall), cells);
  };
  const GridState state = SomeState(kSmall);
  for (const std::string& good : {PrintRegionsGrid(state, "P"), PrintOperandsGrid(state, "P")}) {
    test::ExpectAsRecorded([&] { return test::ToldOfDamage(good, tell); });
    const std::string lines = good.substr(0, good.rfind("check "));
    test::ExpectAsRecorded([&] {
      return test::ToldOfDamage(
          lines, [&](const std::string& bytes) { return tell(bytes + "check " + ToHex(Crc32(bytes), 8) + "\n"); });
    });
  }
}

TEST_F(GridFile, ThatIsDamagedIsKeptAside) {
  const GridState state = SomeState(kLarge);
  const std::string regions = PrintRegionsGrid(state, "Plant");
  ASSERT_TRUE(SaveSessionGrids(mPaths, state, "Plant"));
  mFolder.Put("Sessions/Plant/vsfRegions_1.vsf", regions.substr(0, 60));
  const LoadedGrids loaded = Load();
  EXPECT_FALSE(loaded.isWhole);
  EXPECT_THAT(loaded.notes, ElementsAre(HasSubstr("It is kept as vsfRegions_1.vsf.bad.")));
  EXPECT_TRUE(loaded.state.regions.Rows().empty());
  EXPECT_EQ(loaded.state.operands.Text(MI, 4), "12");
  EXPECT_EQ(TemporaryFolder::Content(SessionFile("vsfRegions_1.vsf.bad")), regions.substr(0, 60));
  EXPECT_FALSE(fs::exists(SessionFile("vsfRegions_1.vsf")));
}

// A file whose check is right is not trusted either: a program of the past or of the future may have written it.
TEST_F(GridFile, WithALineThatIsNoneIsRefusedAndNamesIt) {
  const auto fileOf = [](const std::string& kind, const std::string& lines) {
    const std::string text = "TELEPANEL-" + kind + " 1\nsession Plant\nmodel K220-22-R1\n" + lines;
    return text + "check " + ToHex(Crc32(text), 8) + "\n";
  };
  const std::pair<const char*, const char*> bad[] = {
      {"REGIONS", "widths 0 -1"},         {"REGIONS", "widths 1 1 1 1 1 1 1 1 1"},
      {"REGIONS", "region 23 0 0 1 4 "},  {"REGIONS", "region 2 0 0 1"},
      {"REGIONS", "filevalues "},         {"REGIONS", "read 2 0\t1"},
      {"OPERANDS", "hidden 1 x"},         {"OPERANDS", "width 1 2"},
      {"OPERANDS", "cursor 1"},           {"OPERANDS", "read 23 0\t1"},
      {"OPERANDS", "read 2 -1\t1"},       {"OPERANDS", "read 2 0"},
      {"OPERANDS", "edited 2 0\t1\t\t2"},
  };
  for (const auto& [kind, line] : bad) {
    const std::string file = fileOf(kind, line + std::string("\n"));
    const auto regions = ParseRegionsGrid(file, kSmall);
    const auto operands = ParseOperandsGrid(file, kSmall);
    ASSERT_FALSE(regions || operands) << line;
    EXPECT_EQ(std::max(regions.error().line, operands.error().line), 4U) << line;
  }
  const auto cells = ParseOperandsGrid(fileOf("OPERANDS", "cursor 0 0\nhidden 0 22 23\nread 2 2047\t7\t8\n"), kSmall);
  ASSERT_TRUE(cells);
  EXPECT_EQ(cells->leftOut, 1U);
  EXPECT_EQ(cells->operands.Text(MI, 2047), "7");
  EXPECT_EQ(cells->settings.currentRow, 1);
  EXPECT_TRUE(cells->settings.hidden.IsHidden(22));
  const auto rows = ParseRegionsGrid(
      fileOf("REGIONS",
             "region 2 0 59 2 5 \nregion 2 60 120 2 5 \nfilevalues 5\nregion 2 59 60 2 5 \nregion 2 2047 2048 2 5 \n"
             "region 2 100 2049 2 5 \nregion 2 -1 0 2 5 \nregion 6 0 0 2 5 \n"),
      kSmall);
  ASSERT_TRUE(rows);
  EXPECT_EQ(rows->leftOut, 5U) << "too long, taken, too far, before the first, and a type that the model lacks";
  ASSERT_EQ(rows->rows.size(), 2U);
  EXPECT_FALSE(rows->rows[0].isFromFile) << "they were those of the one that was left out";
}

}  // namespace
}  // namespace kv::mdlDataTypesView
