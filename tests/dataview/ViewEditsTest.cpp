// What the user types, defines and takes back; and that taking back never shows a value that is not true any more.
#include <cctype>
#include <map>

#include "dataview/files/GridFile.h"
#include "tests/dataview/DataViewBench.h"

namespace kv::test {
namespace {

constexpr auto kYes = PromptAnswer::Yes;
constexpr auto kNo = PromptAnswer::No;
constexpr const char* kDeletesQuestion =
    "Box (?) Data Types - Default: Performing this operation will delete all of the current values. Do you want to "
    "continue?";

TEST(Edit, RefusesWhatCannotBeWrittenAndSaysWhatCan) {
  struct Case {
    OperandTypeCode type;
    std::int32_t address;
    const char* text;
    const char* fault;  // part of it; empty when the text is taken
  };
  const Case colour[] = {
      {MI, 0, "32767", ""},
      {MI, 0, "32768", "-32768 to 32767"},
      {MI, 2047, "x", "MI 2047 cannot be \"x\""},
      {MI, 2048, "1", "no MI 2048"},
      {MI, -1, "1", "no MI -1"},
      {DW, 0, "-1", "0 to 4294967295"},
      {CounterPreset, 23, "0", ""},
      {CounterPreset, 24, "0", "no COUNTER PRESET 24"},
      {CounterPreset, 0, "65536", "0 to 65535"},
      {CounterPreset, 0, "-1", "0 to 65535"},
      {TimerPreset, 0, "99:59:59.99", ""},
      {TimerPreset, 0, "100:00:00.00", "99:59:59.99"},
      {SI, 0, "1", "only the controller"},
      {DBI, 0, "1", "no DBI 0"},
  };
  DataViewBench bench;
  for (const Case& c : colour) {
    SCOPED_TRACE(std::string(c.text) + " " + c.fault);
    const std::size_t edited = bench.view.Operands().EditedCount();
    EXPECT_EQ(bench.view.Edit(c.type, c.address, c.text), *c.fault == '\0');
    EXPECT_THAT(bench.view.EditFault(c.type, c.address, c.text), HasSubstr(c.fault));
    if (*c.fault != '\0') {
      EXPECT_EQ(bench.view.Operands().EditedCount(), edited);
    }
  }
  const std::tuple<const char*, const char*, const char*> times[] = {{"K220-22-R1", "1", "01:00:00.00"},
                                                                     {"K220-22-R1", "00:90", "01:30:00.00"},
                                                                     {"Q50", "1500", "1500"},
                                                                     {"Q50", "00:00:01.5", "1050"},
                                                                     {"Q50", "0010", "10"}};
  for (const auto& [model, typed, shown] : times) {
    DataViewBench timed(model);
    EXPECT_TRUE(timed.view.Edit(TimerPreset, 0, typed));
    EXPECT_EQ(timed.view.Operands().Text(TimerPreset, 0), shown) << typed << " says what will be written";
  }
  EXPECT_THAT(DataViewBench("Q50").view.EditFault(TimerPreset, 0, "1505"), HasSubstr("multiple of 10"));
}

// What MI 0 shows: "r3" read, "e3" edited, "" nothing.
std::string Shown(const DataViewBench& bench) {
  const CellText cell = bench.view.Operands().Shown(MI, 0);
  if (cell.origin == CellOrigin::None) return cell.text;
  return (cell.origin == CellOrigin::Read ? "r" : "e") + cell.text;
}

// Steps on MI 0: "=3" types, any other letter runs its command; a number behind it is what the controller then tells.
// The on-line mode, "o", ends after its first pass; "n" starts anew with the region put back.
std::string After(const std::string& steps) {
  const std::map<char, const char*> tools = {{'r', "ID_ReadRegions"},   {'w', "ID_WriteRegions"}, {'u', "ID_Undo"},
                                             {'d', "ID_Redo"},          {'n', "ID_NewRegions"},   {'a', "ID_ReadAll"},
                                             {'t', "ID_TakeAllValues"}, {'o', "ID_OnLine"}};
  DataViewBench bench;
  bench.Add(MI, 0, 0);
  std::uint32_t value = 0;
  bench.channel->value = [&](std::int32_t) { return value; };
  bench.channel->during = [&] { bench.pacer.Sleep(std::chrono::milliseconds(1)); };
  bench.pacer.OnDoEvents([&] {
    if (bench.view.Status().mode == ViewMode::Online) bench.view.Run("ID_OnLine");
  });
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const char step = steps[i];
    const std::string number = i + 1 < steps.size() && std::isdigit(steps[i + 1]) != 0 ? steps.substr(++i, 1) : "";
    if (step == '=') {
      EXPECT_TRUE(bench.view.Edit(MI, 0, number));
      continue;
    }
    if (!number.empty()) value = static_cast<std::uint32_t>(number[0] - '0');
    if (!number.empty()) bench.channel->kept.clear();
    if (step == 'n') bench.prompts.Press(kYes);
    bench.Run(tools.at(step));
  }
  EXPECT_EQ(bench.view.Status().edited, Shown(bench).starts_with("e") ? 1U : 0U) << steps;
  return Shown(bench);
}

TEST(Undo, NeverShowsAnOldTextAsRead) {
  struct Case {
    const char* steps;
    const char* shown;
    const char* why;
  };
  const Case cases[] = {
      {"=3u", "", "nothing was known before"},
      {"r3=4=5uu", "r3", ""},
      {"r3=4ud", "e4", ""},
      {"=3r5", "r5", "a read shows the controller"},
      {"=3r5u", "e3", "and the typed text is not lost"},
      {"=3o5u", "e3", "nor is it on line"},
      {"=3r5r6uu", "r6", "not the older 5, and not nothing"},
      {"r3=4r5r6uu", "r6", "not 3, which the controller no longer holds"},
      {"r3=4wu", "e3", "the controller holds 4 now; 3 is to be written"},
      {"r3=4wr6u", "r6", "told anew since"},
      {"=4wu", "r4", "what stood there before was never known"},
      {"r3=4n", "", ""},
      {"r3=4nuu", "r3", ""},
      {"a5", "", "the user's grid is as it was"},
      {"r3a5t", "r5", ""},
      {"a5tu", "", ""},
      {"=4a5tu", "e4", ""},
      {"a5r6t", "r6", "newer than what is taken over"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(After(c.steps), c.shown) << c.steps << ": " << c.why;
  }
}

TEST(Undo, TakesRegionsAndTheirSettingsBack) {
  DataViewBench bench;
  bench.Add(MI, 0, 9);
  bench.Run("ID_ReadRegions");
  bench.Add(ML, 0, 9);
  bench.view.SetDescription(0, "Tank");
  bench.view.SetSize(0, SizeCode::Bit8);
  HiddenRows hidden;
  hidden.Set(RowOfType(SB), true);
  bench.view.SetHidden(hidden);
  bench.view.SelectRegions({0});
  bench.Run("ID_RemoveRegion");
  EXPECT_EQ(bench.view.UndoText(), "Undo removing regions");
  bench.Run("ID_Undo");
  const auto row = [&]() -> const RegionRow& { return bench.view.Regions().Rows()[0]; };
  EXPECT_EQ(row().description, "Tank");
  EXPECT_THAT(row().values, HasSubstr("  9"));
  EXPECT_EQ(bench.view.AgeText(0), "0 s");
  EXPECT_THAT(bench.changed, ElementsAre(testing::Field(&GridChanges::regionRowsReplaced, true)));
  bench.Run("ID_Undo");
  EXPECT_FALSE(bench.view.Settings().hidden.IsHidden(RowOfType(SB)));
  bench.Run("ID_Undo");
  EXPECT_EQ(row().size, SizeCode::Bit16);
  EXPECT_EQ(bench.changed[0].regionRowsReplaced, false) << "one row's settings";
  for (int i = 0; i < 2; ++i) bench.Run("ID_Undo");
  EXPECT_EQ(bench.view.Regions().Rows().size(), 1U);
  for (int i = 0; i < 5; ++i) bench.Run("ID_Redo");
  EXPECT_THAT(bench.view.Regions().Regions(), ElementsAre(Region{0, 9, ML}));
  EXPECT_EQ(bench.view.WhyNot("ID_Redo"), "There is nothing to do again.");
  bench.Run("ID_Undo");
  bench.view.SetFormat(0, FormatCode::Hex);
  EXPECT_EQ(bench.view.RedoText(), "") << "another change has taken its place";
}

TEST(Undo, ForgetsTheOldestFirst) {
  UndoHistory history(2000);
  for (int i = 0; i < 100; ++i) {
    history.Add({.title = std::to_string(i), .cells = {{.type = MI, .address = 0, .before = {}, .after = {"1"}}}});
  }
  EXPECT_EQ(history.UndoText(), "Undo 99");
  int kept = 0;
  while (history.TakeBack() != nullptr) ++kept;
  EXPECT_GT(kept, 1);
  EXPECT_LT(kept, 20);
  history.Add({.title = "large", .cells = std::vector<CellChange>(1000)});
  EXPECT_EQ(history.UndoText(), "Undo large");
}

// ---- files and the clipboard: that each command does what it says, and leaves the grids alone when it is refused ----

TEST(ViewFiles, RegionsGoIntoAFileAndComeBack) {
  DataViewBench bench;
  const std::string file = Utf8FromPath(bench.home.Path() / "a.axt");
  const auto load = [&](const std::optional<std::string>& path, std::initializer_list<PromptAnswer> answers = {}) {
    bench.prompts.Press(kYes);
    bench.prompts.Choose(path);
    return bench.Run("ID_LoadRegions", answers);
  };
  const auto row = [&]() -> const RegionRow& { return bench.view.Regions().Rows()[0]; };
  bench.Add(MI, 0, 9);
  bench.view.SetDescription(0, "Tank");
  bench.prompts.Choose(file);
  bench.Run("ID_SaveRegions");
  bench.Run("ID_NewRegions", {kYes});
  EXPECT_THAT(load(file), ElementsAre(kDeletesQuestion, "OpenFile *.axt|*.axt"));
  EXPECT_EQ(row().description, "Tank");
  bench.Run("ID_ReadRegions");

  bench.home.Put("a.axt", "Version 100\r\nAurex\r\n2\tMI\t0\t9\tTank\t16 BIT\tDECIMAL\t7 8\t\r\n\r\n");
  load(file);
  EXPECT_EQ(row().values, "7 8");
  EXPECT_THAT(bench.changed, ElementsAre(testing::Field(&GridChanges::regionRowsReplaced, true)))
      << "the same regions, but other texts";
  bench.Run("ID_ReadRegions");
  EXPECT_FALSE(row().isFromFile) << "also where all cells were as they are";
  EXPECT_EQ(bench.changed.size(), 1U) << "the window is told";
  load(file);
  bench.view.Edit(MI, 0, "5");
  EXPECT_FALSE(row().isFromFile);
  EXPECT_NE(row().values, "7 8");

  bench.home.Put("a.axt", "Version 99\r\n");
  EXPECT_EQ(load(file, {kOk}).size(), 3U);
  EXPECT_EQ(load(std::nullopt).size(), 2U);
  EXPECT_THAT(bench.changed, IsEmpty());
  EXPECT_EQ(bench.view.Regions().Rows().size(), 1U);
  bench.home.Put("a.axt", "Version 100\r\nAurex\r\n6\tDBI\t0\t9\t\r\n\r\n");
  EXPECT_THAT(load(file, {kOk}).back(), HasSubstr("contains invalid regions"));
  EXPECT_THAT(bench.view.Status().refusal, testing::StartsWith("a.axt: ")) << "can be read whole";
  EXPECT_THAT(bench.view.Regions().Rows(), IsEmpty());
  EXPECT_EQ(bench.view.Operands().Text(MI, 0), "5") << "only the regions go";
  bench.Run("ID_Undo");
  EXPECT_EQ(bench.view.Regions().Rows().size(), 1U);
}

TEST(ViewFiles, PasteAndImportTakeAllOrNothing) {
  DataViewBench bench;
  bench.Add(SI, 0, 1);
  bench.Add(MI, 0, 0);
  bench.Run("ID_ReadRegions");
  const auto paste = [&](const char* text, std::int32_t row, std::initializer_list<PromptAnswer> answers) {
    bench.clipboard.SetText(text);
    bench.view.Select({.top = row, .left = 1, .bottom = row, .right = 1});
    bench.Run("ID_Paste", answers);
  };
  paste("1\t2\r\n", RowOfType(MI), {});
  EXPECT_EQ(bench.view.Operands().Text(MI, 1), "2");
  EXPECT_EQ(bench.view.Regions().Rows()[1].values, "     1");
  EXPECT_EQ(bench.changed.size(), 1U);
  paste("7\t40000\r\n", RowOfType(MI), {kOk});
  EXPECT_THAT(bench.view.Status().message, HasSubstr("MI 1 cannot be \"40000\""));
  EXPECT_EQ(bench.view.Operands().Text(MI, 0), "1");
  paste("7\t8\r\n", RowOfType(SI), {});
  EXPECT_EQ(bench.view.Operands().Text(SI, 1), "1") << "what only the controller sets shows what it told";
  EXPECT_THAT(bench.view.Status().message, HasSubstr("2 cells of types that only the controller sets"));

  paste("nan\t-inf\r\n", RowOfType(MF), {});
  EXPECT_EQ(bench.view.Operands().Text(MF, 1), "-inf") << "a controller may have told it";
  bench.Run("ID_Undo");

  bench.view.Select({.top = RowOfType(MI), .left = 1, .bottom = RowOfType(SI), .right = 2});
  bench.Run("ID_Cut");
  EXPECT_EQ(bench.view.Operands().Text(MI, 1), "");
  EXPECT_EQ(bench.view.Operands().Text(SI, 1), "1");
  bench.view.Select({.top = RowOfType(MI), .left = 1, .bottom = RowOfType(MI), .right = 1});
  bench.Run("ID_Paste");
  EXPECT_EQ(bench.view.Operands().Text(MI, 1), "2");
  for (int i = 0; i < 3; ++i) bench.Run("ID_Undo");
  EXPECT_EQ(bench.view.Operands().EditedCount(), 0U);
}

TEST(ViewFiles, TheSeparatorIsAskedForBeforeTheFile) {
  DataViewBench bench;
  for (const char* tool : {"ID_ExportToCSV", "ID_ImportFromCSV"}) {
    bench.separator = [](const std::string&) { return std::nullopt; };
    EXPECT_THAT(bench.Run(tool), IsEmpty()) << "cancelled";
    bench.separator = [](const std::string&) { return "0A"; };
    EXPECT_THAT(bench.Run(tool, {kOk}), ElementsAre(HasSubstr("The line feed (0A) ends a line")));
  }
  bench.separator = [](const std::string& offered) { return offered; };
  for (const char* tool : {"ID_ImportFromCSV", "ID_ExportToCSV", "ID_Export", "ID_SaveRegions"}) {
    bench.prompts.Choose(std::nullopt);
    bench.Run(tool);
  }
  EXPECT_EQ(bench.prompts.OpenDialogs().back(),
            FileDialog({.title = "Import from CSV", .filter = "*.csv|*.csv", .purpose = "Values"}));
  const auto& saves = bench.prompts.SaveDialogs();
  EXPECT_THAT(saves[0].initial, testing::MatchesRegex("Default-K220-22-R1-[0-9]+-[0-9][0-9]-[0-9][0-9]\\.csv"));
  EXPECT_THAT(saves[1].initial, testing::EndsWith(".xls"));
  EXPECT_EQ(saves[2], FileDialog({.title = "Save Regions", .filter = "*.axt|*.axt", .purpose = "Regions"}));
}

// ---- all values ----

TEST(ReadAll, AsksForWhatTheControllerHasAndLeavesTheGridsAlone) {
  for (const auto& [os, requests] : {std::pair("4.00", 35), std::pair("2.00", 18)}) {
    DataViewBench bench;
    bench.channel->version->osVersion = os;
    bench.view.Edit(MI, 3, "8");
    const CallLog log = bench.Run("ID_ReadAll");
    EXPECT_THAT(bench.changed, IsEmpty()) << bench.view.Status().message;
    EXPECT_EQ(bench.view.Operands().Text(MI, 3), "8");
    const auto isOfMI = [](const std::string& call) { return call.starts_with("ReadOperandList @1: 0,3,"); };
    EXPECT_EQ(std::ranges::count_if(log, isOfMI), requests) << os;
    EXPECT_THAT(log, Contains(HasSubstr(": 0,1,0,"))) << "MB, the first type";
    EXPECT_FALSE(std::filesystem::exists(bench.home.Path() / "Tmp" / "Regions.tmp"));
  }
}

TEST(ReadAll, AProgramThatIsKilledInTheMiddleLosesNothing) {
  DataViewBench bench;
  bench.Add(MI, 0, 9);
  bench.view.Edit(MI, 3, "8");
  bool isFirst = true;
  bench.channel->during = [&] {
    if (!std::exchange(isFirst, false)) return;
    // The next program finds the folder as it stands now.
    std::filesystem::copy(bench.home.Path() / "Tmp", bench.home.Path() / "Kept");
  };
  bench.Run("ID_ReadAll");
  std::filesystem::remove_all(bench.home.Path() / "Tmp");
  std::filesystem::rename(bench.home.Path() / "Kept", bench.home.Path() / "Tmp");
  bench.view.Open();
  EXPECT_THAT(bench.view.Regions().Regions(), ElementsAre(Region{0, 9, MI}));
  EXPECT_EQ(bench.view.Operands().Shown(MI, 3), (CellText{"8", CellOrigin::Edited}));
  EXPECT_THAT(bench.view.Status().message, HasSubstr("ended during a read or write of all values"));
}

TEST(WriteAll, WritesEveryTextThatMayBeWritten) {
  DataViewBench bench;
  bench.Add(SI, 0, 1);
  bench.Run("ID_ReadRegions");
  EXPECT_THAT(bench.Run("ID_WriteAll", {kOk}), testing::Not(Contains(HasSubstr("Write"))));
  for (const std::int32_t address : {0, 1, 3}) bench.view.Edit(MI, address, "8");
  for (std::int32_t address = 10; address < 41; ++address) bench.view.Edit(ML, address, "-8");
  constexpr const char* kQuestion = "Box (?) Data Types - Default: Write 34 values to COM3, 115200 8N1, unit 1?";
  EXPECT_THAT(bench.Run("ID_WriteAll", {PromptAnswer::No}), ElementsAre(kQuestion));
  EXPECT_TRUE(bench.prompts.Boxes().back().canLose) << "Enter does not write";
  const CallLog log = bench.Run("ID_WriteAll", {PromptAnswer::Yes, kOk});
  EXPECT_THAT(log, Contains("WriteMI 0 2 @1"));
  EXPECT_THAT(log, Contains("WriteMI 3 1 @1"));
  EXPECT_THAT(log, Contains("WriteML 10 30 @1"));
  EXPECT_THAT(log, Contains("WriteML 40 1 @1"));
  EXPECT_EQ(bench.view.Status().edited, 0U);
  EXPECT_EQ(bench.view.Regions().Rows().size(), 1U);

  EXPECT_TRUE(bench.view.Close());
  bench.view.Open();
  bench.view.Edit(MI, 0, "9");
  EXPECT_THAT(bench.Run("ID_WriteAll", {PromptAnswer::No}),
              ElementsAre(testing::StartsWith(
                  std::string(kQuestion) + "\n\n1 of them was changed here; 33 stand as they were read or written last."
                                           "\n\n33 of them are pale: ")));
}

// ---- between openings ----

TEST(Close, KeepsBothGridsOrAsks) {
  DataViewBench bench;
  bench.Add(MI, 0, 9);
  bench.Run("ID_ReadRegions");
  EXPECT_TRUE(bench.view.Close());
  EXPECT_FALSE(bench.view.Edit(MI, 3, "9"));
  bench.view.Open();
  EXPECT_EQ(bench.view.AgeText(0), "") << "how old the values are is not known any more";
  EXPECT_EQ(bench.view.UndoText(), "");
  std::filesystem::remove_all(bench.Session("Default"));
  bench.prompts.Press(kNo);
  EXPECT_FALSE(bench.view.Close());
  EXPECT_TRUE(bench.view.Edit(MI, 3, "9")) << "it is still open";
  bench.prompts.Press(kYes);
  EXPECT_TRUE(bench.view.Close());

  DataViewBench watching;
  watching.Add(MI, 0, 61);
  watching.channel->during = [&] { watching.pacer.Sleep(std::chrono::milliseconds(300)); };
  watching.pacer.OnDoEvents([&] { EXPECT_TRUE(watching.view.Close()); });
  EXPECT_THAT(watching.Run("ID_OnLine"), testing::Not(Contains("ReadOperandList @1: 0,3,60,2,0")))
      << "not to the end of the pass";
  EXPECT_EQ(watching.view.Status().mode, ViewMode::Idle);
}

}  // namespace
}  // namespace kv::test
