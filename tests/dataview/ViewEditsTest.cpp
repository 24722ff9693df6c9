// What the user types, defines and takes back; and that taking back never shows a value that is not true any more. What
// each command says and does stands in the record of its test.
#include <cctype>
#include <map>

#include "dataview/files/GridFile.h"
#include "tests/dataview/DataViewFixture.h"

namespace kv::test {
namespace {

constexpr auto kYes = PromptAnswer::Yes;
constexpr auto kNo = PromptAnswer::No;
TEST(Edit, RefusesWhatCannotBeWrittenAndSaysWhatCan) {
  constexpr const char* kColour = "K220-22-R1";
  const std::tuple<const char*, OperandTypeCode, std::int32_t, const char*> cases[] = {
      {kColour, MI, 0, "32767"},
      {kColour, MI, 0, "32768"},
      {kColour, MI, 2047, "x"},
      {kColour, MI, 2048, "1"},
      {kColour, MI, -1, "1"},
      {kColour, DW, 0, "-1"},
      {kColour, CounterPreset, 23, "0"},
      {kColour, CounterPreset, 24, "0"},
      {kColour, CounterPreset, 0, "65536"},
      {kColour, CounterPreset, 0, "-1"},
      {kColour, TimerPreset, 0, "99:59:59.99"},
      {kColour, TimerPreset, 0, "100:00:00.00"},
      {kColour, TimerPreset, 0, "1"},
      {kColour, TimerPreset, 0, "00:90"},
      {kColour, SI, 0, "1"},
      {kColour, DBI, 0, "1"},
      {"Q50", TimerPreset, 0, "1500"},
      {"Q50", TimerPreset, 0, "00:00:01.5"},
      {"Q50", TimerPreset, 0, "0010"},
      {"Q50", TimerPreset, 0, "1505"},
  };
  for (const auto& [model, type, address, text] : cases) {
    DataViewFixture fixture(model);
    const std::string fault = fixture.view.EditFault(type, address, text);
    fixture.shown += text + (": " + fault) + "\n";
    EXPECT_EQ(fixture.view.Edit(type, address, text), fault.empty()) << fault;
  }
}

// What MI 0 shows: "r3" read, "e3" edited, "" nothing.
std::string Shown(const DataViewFixture& fixture) {
  const CellText cell = fixture.view.Operands().Shown(MI, 0);
  if (cell.origin == CellOrigin::None) return cell.text;
  return (cell.origin == CellOrigin::Read ? "r" : "e") + cell.text;
}

// Steps on MI 0: "=3" types, any other letter runs its command; a number behind it is what the controller then tells.
// The on-line mode, "o", ends after its first pass; "n" starts anew with the region put back.
std::string After(const std::string& steps) {
  const std::map<char, const char*> tools = {{'r', "ID_ReadRegions"},   {'w', "ID_WriteRegions"}, {'u', "ID_Undo"},
                                             {'d', "ID_Redo"},          {'n', "ID_NewRegions"},   {'a', "ID_ReadAll"},
                                             {'t', "ID_TakeAllValues"}, {'o', "ID_OnLine"}};
  DataViewFixture fixture;
  fixture.Add(MI, 0, 0);
  std::uint32_t value = 0;
  fixture.channel->value = [&](std::int32_t) { return value; };
  fixture.channel->during = [&] { fixture.pacer.Sleep(std::chrono::milliseconds(1)); };
  fixture.pacer.OnDoEvents([&] {
    if (fixture.view.Status().mode == ViewMode::Online) fixture.view.Run("ID_OnLine");
  });
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const char step = steps[i];
    const std::string number = i + 1 < steps.size() && std::isdigit(steps[i + 1]) != 0 ? steps.substr(++i, 1) : "";
    if (step == '=') {
      EXPECT_TRUE(fixture.view.Edit(MI, 0, number));
      continue;
    }
    if (!number.empty()) value = static_cast<std::uint32_t>(number[0] - '0');
    if (!number.empty()) fixture.channel->kept.clear();
    if (step == 'n') fixture.prompts.Press(kYes);
    fixture.Run(tools.at(step));
  }
  EXPECT_EQ(fixture.view.Status().edited, Shown(fixture).starts_with("e") ? 1U : 0U) << steps;
  return Shown(fixture);
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
  DataViewFixture fixture;
  fixture.Add(MI, 0, 9);
  fixture.Run("ID_ReadRegions");
  fixture.Add(ML, 0, 9);
  fixture.view.SetDescription(0, "Tank");
  fixture.view.SetSize(0, SizeCode::Bit8);
  HiddenRows hidden;
  hidden.Set(RowOfType(SB), true);
  fixture.view.SetHidden(hidden);
  fixture.view.SelectRegions({0});
  fixture.Run("ID_RemoveRegion");
  EXPECT_EQ(fixture.view.UndoText(), "Undo removing regions");
  for (int i = 0; i < 5; ++i) fixture.Run("ID_Undo");
  EXPECT_FALSE(fixture.view.Settings().hidden.IsHidden(RowOfType(SB)));
  for (int i = 0; i < 5; ++i) fixture.Run("ID_Redo");
  EXPECT_EQ(fixture.view.WhyNot("ID_Redo"), "There is nothing to do again.");
  fixture.Run("ID_Undo");
  fixture.view.SetFormat(0, FormatCode::Hex);
  EXPECT_EQ(fixture.view.RedoText(), "") << "another change has taken its place";
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
  DataViewFixture fixture;
  const std::string file = Utf8FromPath(fixture.home.Path() / "a.axt");
  const auto load = [&](const std::optional<std::string>& path, std::initializer_list<PromptAnswer> answers = {}) {
    fixture.prompts.Press(kYes);
    fixture.prompts.Choose(path);
    fixture.Run("ID_LoadRegions", answers);
  };
  fixture.Add(MI, 0, 9);
  fixture.view.SetDescription(0, "Tank");
  fixture.prompts.Choose(file);
  fixture.Run("ID_SaveRegions");
  fixture.Run("ID_NewRegions", {kYes});
  load(file);
  fixture.Run("ID_ReadRegions");

  fixture.home.Put("a.axt", "Version 100\r\nAurex\r\n2\tMI\t0\t9\tTank\t16 BIT\tDECIMAL\t7 8\t\r\n\r\n");
  load(file);  // the same regions, but other texts
  fixture.Run("ID_ReadRegions");
  load(file);
  fixture.view.Edit(MI, 0, "5");

  fixture.home.Put("a.axt", "Version 99\r\n");
  load(file, {kOk});
  load(std::nullopt);
  fixture.home.Put("a.axt", "Version 100\r\nAurex\r\n6\tDBI\t0\t9\t\r\n\r\n");
  load(file, {kOk});  // it can be read whole
  fixture.Run("ID_Undo");
}

TEST(ViewFiles, PasteAndImportTakeAllOrNothing) {
  DataViewFixture fixture;
  fixture.Add(SI, 0, 1);
  fixture.Add(MI, 0, 0);
  fixture.Run("ID_ReadRegions");
  const auto paste = [&](const char* text, std::int32_t row, std::initializer_list<PromptAnswer> answers) {
    fixture.clipboard.SetText(text);
    fixture.view.Select({.top = row, .left = 1, .bottom = row, .right = 1});
    fixture.Run("ID_Paste", answers);
  };
  paste("1\t2\r\n", RowOfType(MI), {});
  paste("7\t40000\r\n", RowOfType(MI), {kOk});
  paste("7\t8\r\n", RowOfType(SI), {});
  paste("nan\t-inf\r\n", RowOfType(MF), {});  // a controller may have told it
  fixture.Run("ID_Undo");
  fixture.view.Select({.top = RowOfType(MI), .left = 1, .bottom = RowOfType(SI), .right = 2});
  fixture.Run("ID_Cut");
  fixture.view.Select({.top = RowOfType(MI), .left = 1, .bottom = RowOfType(MI), .right = 1});
  fixture.Run("ID_Paste");
  for (int i = 0; i < 3; ++i) fixture.Run("ID_Undo");
}

TEST(ViewFiles, TheSeparatorIsAskedForBeforeTheFile) {
  DataViewFixture fixture;
  for (const char* tool : {"ID_ExportToCSV", "ID_ImportFromCSV"}) {
    fixture.separator = [](const std::string&) { return std::nullopt; };
    EXPECT_THAT(fixture.Run(tool), IsEmpty()) << "cancelled";
    fixture.separator = [](const std::string&) { return "0A"; };
    EXPECT_THAT(fixture.Run(tool, {kOk}), ElementsAre(HasSubstr("The line feed (0A) ends a line")));
  }
  fixture.separator = [](const std::string& offered) { return offered; };
  for (const char* tool : {"ID_ImportFromCSV", "ID_ExportToCSV", "ID_Export", "ID_SaveRegions"}) {
    fixture.prompts.Choose(std::nullopt);
    fixture.Run(tool);
  }
  fixture.prompts.Choose(std::nullopt);
  fixture.host.model = "K220/22: R1";
  fixture.Run("ID_Export");
  EXPECT_EQ(fixture.prompts.OpenDialogs().back(),
            FileDialog({.title = "Import from CSV", .filter = "*.csv|*.csv", .purpose = "Values"}));
  const auto& saves = fixture.prompts.SaveDialogs();
  EXPECT_THAT(saves[0].initial, testing::MatchesRegex("Default-K220-22-R1-\\w+-\\w\\w-\\w\\w\\.csv"));
  EXPECT_THAT(saves[1].initial, testing::EndsWith(".xls"));
  EXPECT_THAT(saves[3].initial, testing::MatchesRegex("Default-K220-22-R1-\\w+-\\w\\w-\\w\\w\\.xls"));
  EXPECT_EQ(saves[2], FileDialog({.title = "Save Regions", .filter = "*.axt|*.axt", .purpose = "Regions"}));
}

// ---- all values ----

TEST(ReadAll, AsksForWhatTheControllerHasAndLeavesTheGridsAlone) {
  for (const auto& [model, os] : {std::pair("K220-22-R1", "3.00"),
                                  {"K220-22-R1", "2.99"},
                                  {"K450-45", "a;b;c;O/S 1.1;"},
                                  {"K450-45", "a;b;c;O/S 1.0;"}}) {
    DataViewFixture fixture(model);
    fixture.channel->version->osVersion = os;
    fixture.view.Edit(MI, 3, "8");
    fixture.Run("ID_ReadAll");
    EXPECT_FALSE(std::filesystem::exists(fixture.home.Path() / "Tmp" / "Regions.tmp"));
  }
}

TEST(ReadAll, AProgramThatIsKilledInTheMiddleLosesNothing) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 9);
  fixture.view.Edit(MI, 3, "8");
  bool isFirst = true;
  fixture.channel->during = [&] {
    if (!std::exchange(isFirst, false)) return;
    // The next program finds the folder as it stands now.
    std::filesystem::copy(fixture.home.Path() / "Tmp", fixture.home.Path() / "Kept");
  };
  fixture.Run("ID_ReadAll");
  std::filesystem::remove_all(fixture.home.Path() / "Tmp");
  std::filesystem::rename(fixture.home.Path() / "Kept", fixture.home.Path() / "Tmp");
  fixture.view.Open();
  EXPECT_TRUE(std::filesystem::is_empty(fixture.home.Path() / "Tmp")) << "it would be found again";
}

TEST(WriteAll, WritesEveryTextThatMayBeWritten) {
  DataViewFixture fixture;
  fixture.Add(SI, 0, 1);
  fixture.Run("ID_ReadRegions");
  fixture.Run("ID_WriteAll", {kOk});
  for (const std::int32_t address : {0, 1, 3}) fixture.view.Edit(MI, address, "8");
  for (std::int32_t address = 10; address < 41; ++address) fixture.view.Edit(ML, address, "-8");
  fixture.Run("ID_WriteAll", {PromptAnswer::No});
  EXPECT_TRUE(fixture.prompts.Boxes().back().canLose) << "Enter does not write";
  fixture.Run("ID_WriteAll", {PromptAnswer::Yes, kOk});

  EXPECT_TRUE(fixture.view.Close());
  fixture.view.Open();
  fixture.view.Edit(MI, 0, "9");
  fixture.Run("ID_WriteAll", {PromptAnswer::No});
}

// ---- between openings ----

TEST(Close, KeepsBothGridsOrAsks) {
  DataViewFixture fixture;
  fixture.Add(MI, 0, 9);
  fixture.Run("ID_ReadRegions");
  EXPECT_TRUE(fixture.view.Close());
  EXPECT_FALSE(fixture.view.Edit(MI, 3, "9"));
  fixture.view.Open();
  EXPECT_EQ(fixture.view.AgeText(0), "") << "how old the values are is not known any more";
  EXPECT_EQ(fixture.view.UndoText(), "");
  std::filesystem::remove_all(fixture.Session("Default"));
  fixture.prompts.Press(kNo);
  EXPECT_FALSE(fixture.view.Close());
  EXPECT_TRUE(fixture.view.Edit(MI, 3, "9")) << "it is still open";
  fixture.prompts.Press(kYes);
  EXPECT_TRUE(fixture.view.Close());

  DataViewFixture watching;
  watching.Add(MI, 0, 61);
  watching.channel->during = [&] { watching.pacer.Sleep(std::chrono::milliseconds(300)); };
  watching.pacer.OnDoEvents([&] { EXPECT_TRUE(watching.view.Close()); });
  EXPECT_THAT(watching.Run("ID_OnLine"), testing::Not(Contains("ReadOperandList @1: 0,3,60,2,0")))
      << "not to the end of the pass";
  EXPECT_EQ(watching.view.Status().mode, ViewMode::Idle);
  watching.view.Open();
  watching.Run("ID_ReadRegions");
}

TEST(Close, LosesNothingThatASecondCopyOfTheProgramHasSaved) {
  DataViewFixture first;
  DataTypesView second({first.shared, first.prompts, first.pacer, first.clipboard, first.selector, first.pacer}, first);
  second.Open();
  first.Add(MI, 0, 9);
  EXPECT_TRUE(first.view.Close());
  second.SetLayout({60, 120}, 91);
  EXPECT_TRUE(second.Close()) << "nothing was changed in it";
  second.Open();
  first.view.Open();
  ASSERT_EQ(first.view.Regions().Rows().size(), 1U);
  first.Add(MI, 20, 29);
  EXPECT_TRUE(first.view.Close());
  second.Edit(MI, 3, "9");
  first.prompts.Press(kOk);
  EXPECT_TRUE(second.Close());
  EXPECT_THAT(first.Taken(), Contains(HasSubstr("Another program has saved the grids of this session")));
  EXPECT_THAT(TemporaryFolder::Content(first.Session("Default") / "vsfRegions_1.vsf.old"),
              HasSubstr("region 2 20 29 "));
  first.view.Open();
  EXPECT_EQ(first.view.Regions().Rows().size(), 1U);
}

}  // namespace
}  // namespace kv::test
