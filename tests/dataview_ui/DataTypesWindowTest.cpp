#include <gmock/gmock.h>

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QToolButton>

#include "dataview/ui/GridColours.h"
#include "dataview/ui/ViewStatusBar.h"
#include "tests/dataview_ui/ViewFixture.h"
#include "tests/desktop_ui/UsableWindow.h"

namespace kv::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum OperandTypeCode;

using DataTypesWindowTest = ViewFixture;

constexpr const char* kWritten = "1 region written and read back.";

TEST_F(DataTypesWindowTest, ASelectionBecomesRegions) {
  Open();
  EXPECT_FALSE(Tool("ID_ReadRegions").isEnabled());
  AddRegion(MB, 0, 249);
  EXPECT_THAT(RegionTexts(), ElementsAre("MB 0..119", "MB 120..239", "MB 240..249"));
  session.prompts.Press(PromptAnswer::Ok);
  AddRegion(MB, 200, 300);
  EXPECT_EQ(session.prompts.Boxes().back().text, kRegionOverlapMessage);
  Operands().verticalHeader()->sectionClicked(RowOfType(DW) - 1);
  Operands().selectRow(RowOfType(DW) - 1);
  QCoreApplication::processEvents();
  Trigger("ID_AddRegion");
  EXPECT_EQ(RegionTexts().back(), "DW 240..255");
  EXPECT_EQ(RegionTexts().size(), 12U);
  Regions().selectRow(0);
  QTest::keyClick(&Regions(), Qt::Key_Down);
  QTest::keyClick(&Regions(), Qt::Key_Delete);
  EXPECT_EQ(RegionTexts()[1], "MB 240..249");
  Regions().selectRow(10);
  Trigger("ID_Undo");
  EXPECT_EQ(RegionTexts()[1], "MB 120..239");
  QTest::keyClick(&Regions(), Qt::Key_Delete);
  EXPECT_EQ(RegionTexts().back(), "DW 210..239") << "what is selected goes, also where rows came before it";
  session.prompts.Press(PromptAnswer::Yes);
  Trigger("ID_NewRegions");
  EXPECT_THAT(RegionTexts(), IsEmpty());
}

TEST_F(DataTypesWindowTest, HiddenRowsStayOutOfASelectionAndCanBeBroughtBack) {
  Open();
  Select(MI, 0, MI, 0);
  Trigger("VIEW_HideRows");
  EXPECT_TRUE(Operands().isRowHidden(RowOfType(MI) - 1));
  Select(MB, 5, MF, 9);
  Trigger("ID_AddRegion");
  EXPECT_THAT(RegionTexts(), ElementsAre("MB 5..9", "MF 5..9"));
  Trigger("VIEW_ShowRows");
  EXPECT_FALSE(Operands().isRowHidden(RowOfType(MI) - 1));
  EXPECT_FALSE(Tool("VIEW_ShowRows").isEnabled());
  Select(MI, 0, ML, 0);
  Trigger("VIEW_HideRows");
  EXPECT_TRUE(Operands().isRowHidden(RowOfType(ML) - 1));
  Trigger("ID_Undo");  // one step for all of them
  EXPECT_FALSE(Tool("VIEW_ShowRows").isEnabled());
}

TEST_F(DataTypesWindowTest, SizesAndFormatsAreThoseOfTheTypeAndTheSize) {
  Open();
  AddRegion(MI, 0, 1);
  AddRegion(MB, 0, 1);
  const struct {
    int row;
    RegionColumn column;
    const char* list;
    std::vector<std::string> offered;
    int chosen;
  } cases[] = {
      {0, RegionColumn::Size, "cboSize", {"8 BIT", "16 BIT", "32 BIT"}, 2},
      {0, RegionColumn::Format, "cboFormat", {"ASCII", "HEX", "DECIMAL", "UNSIGNED", "FLOAT"}, 3},
      {0, RegionColumn::Size, "cboSize", {"8 BIT", "16 BIT", "32 BIT"}, 0},
      {0, RegionColumn::Format, "cboFormat", {"ASCII", "BINARY", "HEX", "DECIMAL"}, 2},
      {1, RegionColumn::Size, "cboSize", {"1 BIT"}, 0},
      {1, RegionColumn::Format, "cboFormat", {"BINARY"}, 0},
  };
  for (const auto& each : cases) {
    Regions().edit(RegionIndex(each.row, each.column));
    auto& list = Find<QComboBox>(Regions(), each.list);
    std::vector<std::string> offered;
    for (int i = 0; i < list.count(); ++i) offered.push_back(list.itemText(i).toStdString());
    EXPECT_EQ(offered, each.offered);
    EXPECT_EQ(list.currentText().toStdString(), RegionCell(each.row, each.column));
    list.setCurrentIndex(each.chosen);
    emit list.activated(each.chosen);
    EXPECT_EQ(RegionCell(each.row, each.column), each.offered[static_cast<std::size_t>(each.chosen)]);
    ASSERT_TRUE(WaitUntil([&] { return !Regions().findChild<QComboBox*>(); }));
  }
  Trigger("ID_ReadRegions");
  EXPECT_EQ(RegionCell(0, RegionColumn::Values), "00 00 00 00");
  EXPECT_EQ(RegionCell(1, RegionColumn::Values), "0 0");
}

TEST_F(DataTypesWindowTest, AnEditIsCheckedAsItIsTyped) {
  Open();
  QLineEdit& editor = Type(Cell(MI, 5), "40000");
  EXPECT_THAT(editor.toolTip().toStdString(), HasSubstr("-32768 to 32767"));
  QTest::keyClick(&editor, Qt::Key_Return);
  EXPECT_EQ(Operands().findChild<QLineEdit*>("cellEditor"), &editor);  // not taken, and nothing is lost
  EXPECT_EQ(editor.text(), "40000");
  QTest::keyClick(&editor, Qt::Key_Escape);
  ASSERT_TRUE(IsEditorGone());
  EXPECT_EQ(Value(MI, 5), "");
  EXPECT_TRUE(window->isVisible());

  QLineEdit& refused = Type(Cell(MI, 5), "1.5");
  Regions().setFocus();  // leaving the cell gives the old text back
  EXPECT_FALSE(refused.hasFocus());
  ASSERT_TRUE(IsEditorGone());
  EXPECT_EQ(Value(MI, 5), "");

  QTest::keyClick(&Type(Cell(MI, 5), "-7"), Qt::Key_Return);
  ASSERT_TRUE(IsEditorGone());
  EXPECT_EQ(Value(MI, 5), "-7");
  EXPECT_EQ(Operands().currentIndex(), Cell(MI, 6));  // on to the next address
  EXPECT_EQ(Label("lblEdited"), "1 edited");
  EXPECT_THAT(Cell(MI, 5).data(Qt::AccessibleTextRole).toString().toStdString(), HasSubstr("edited"));
  EXPECT_EQ(Tool("ID_Undo").text(), "&Undo typing MI 5");
  Trigger("ID_Undo");
  EXPECT_EQ(Value(MI, 5), "");
  Trigger("ID_Redo");
  EXPECT_EQ(Value(MI, 5), "-7");

  Operands().setCurrentIndex(Cell(SI, 5));
  QTest::keyClicks(&Operands(), "1");
  EXPECT_EQ(Operands().findChild<QLineEdit*>("cellEditor"), nullptr);
  EXPECT_THAT(Label("lblMessage"), HasSubstr("SI 5 cannot be changed"));
}

TEST_F(DataTypesWindowTest, OnLineValuesMoveUnderAnOpenEditor) {
  Open();
  AddRegion(MI, 100, 101);
  AddRegion(SB, 3, 3);
  QSignalSpy changes(Operands().model(), &QAbstractItemModel::dataChanged);
  std::string before;
  const auto hasMoved = [&] { return !before.empty() && Value(MI, 100) != before; };
  Online({{[&] { return Label("lblMode") == "Watching" && Label("lblPasses").ends_with("passes/s"); },
           [&] {
             EXPECT_FALSE(Tool("ID_ReadRegions").isEnabled());
             EXPECT_TRUE(Find<QToolButton>(*window, "cmdOnLine").isChecked());
             Select(ML, 3, ML, 5);
             before = Value(MI, 100);
           }},
          {hasMoved,
           [&] {
             const QModelIndex from = changes.back().at(0).toModelIndex();
             const QModelIndex to = changes.back().at(1).toModelIndex();
             EXPECT_TRUE(from.column() >= 3 && to.column() <= 101) << "only what has changed is told";
             EXPECT_EQ(Operands().selectionModel()->selectedIndexes().size(), 3);
             Type(Cell(MI, 50), "12");
             before = Value(MI, 100);
           }},
          {hasMoved, [&] {
             auto& editor = Find<QLineEdit>(Operands(), "cellEditor");
             EXPECT_EQ(editor.text(), "12");
             QTest::keyClick(&editor, Qt::Key_Return);
           }}});
  ASSERT_TRUE(IsEditorGone());
  EXPECT_EQ(Value(MI, 50), "12");
  EXPECT_EQ(Label("lblMode"), "Not watching");
  EXPECT_FALSE(Find<QToolButton>(*window, "cmdOnLine").isChecked());
  EXPECT_TRUE(Tool("ID_ReadRegions").isEnabled());
  EXPECT_THAT(Label("lblAge"), testing::StartsWith("Read "));
}

TEST_F(DataTypesWindowTest, ClosingEndsTheOnLineModeAndOpeningFindsEverything) {
  Open();
  Select(XB, 0, XB, 0);
  Trigger("VIEW_HideRows");
  AddRegion(MI, 100, 101);
  Regions().model()->setData(RegionIndex(0, RegionColumn::Description), "ramp");
  QTest::keyClick(&Type(Cell(MI, 7), "123"), Qt::Key_Return);
  ASSERT_TRUE(IsEditorGone());
  Online({{[&] { return !Value(MI, 100).empty(); }, [&] { window->close(); }}});
  EXPECT_FALSE(window->isVisible());
  EXPECT_THAT(session.log, testing::Contains(HasSubstr("keeps 1 edited")));
  Open();
  EXPECT_THAT(RegionTexts(), ElementsAre("MI 100..101"));
  EXPECT_EQ(RegionCell(0, RegionColumn::Description), "ramp");
  EXPECT_TRUE(Operands().isRowHidden(RowOfType(XB) - 1));
  EXPECT_EQ(Value(MI, 7), "123");
  EXPECT_EQ(Label("lblEdited"), "1 edited");
  EXPECT_EQ(window->windowTitle(), "Operand View - Default");
  EXPECT_EQ(Label("lblAge"), "Values from before");  // and not as if they had just been read
  Trigger("ID_ReadRegions");
  AddRegion(MI, 7, 7);
  EXPECT_THAT(Label("lblAge"), testing::StartsWith("Read "));
}

TEST_F(DataTypesWindowTest, WhatWasReadIsRepaintedAndSaysHowOldItIs) {
  Open();
  AddRegion(MB, 0, 0);
  AddRegion(DW, 255, 255);
  QSignalSpy cells(Operands().model(), &QAbstractItemModel::dataChanged);
  QSignalSpy rows(Regions().model(), &QAbstractItemModel::dataChanged);
  Trigger("ID_ReadRegions");
  ASSERT_FALSE(cells.isEmpty());
  EXPECT_EQ(cells.front().at(0).toModelIndex(), Cell(MB, 0)) << "the first row and address are among them";
  EXPECT_EQ(cells.back().at(1).toModelIndex(), Cell(DW, 255));
  ASSERT_FALSE(rows.isEmpty());
  EXPECT_EQ(rows.front().at(0).toModelIndex().row(), 0);
  EXPECT_EQ(rows.back().at(1).toModelIndex(), RegionIndex(1, RegionColumn::Values));
  const auto tip = [](const QModelIndex& index) { return index.data(Qt::ToolTipRole).toString().toStdString(); };
  EXPECT_THAT(tip(RegionIndex(0, RegionColumn::Values)), AllOf(HasSubstr("Values "), HasSubstr(" ago")));
  EXPECT_EQ(tip(RegionIndex(0, RegionColumn::Name)), "MB");
  EXPECT_EQ(tip(Cell(MB, 0)), "MB 0: 0");
  EXPECT_EQ(tip(Cell(MB, 1)), "MB 1: not read");
  EXPECT_EQ(tip(Cell(DW, 256)), "DW ends at address 255");
  EXPECT_EQ(tip(Cell(DBI, 0)), "This model has no DBI");
  cells.clear();
  Trigger("VIEW_HideRows");
  EXPECT_EQ(cells.back().at(0).toModelIndex(), Cell(MB, 0)) << "all rows are shown anew";
  Operands().model()->setData(Cell(MB, 0), "1");
  EXPECT_THAT(tip(RegionIndex(0, RegionColumn::Values)), HasSubstr("Values edited")) << "nobody has read it";
}

TEST_F(DataTypesWindowTest, EachStateOfACellIsSeen) {
  Open();
  const auto drawn = [this](OperandTypeCode type, int address) {
    return Operands().viewport()->grab(Operands().visualRect(Cell(type, address))).toImage();
  };
  AddRegion(MI, 8, 8);
  QTest::keyClick(&Type(Cell(MI, 8), "12"), Qt::Key_Return);
  ASSERT_TRUE(IsEditorGone());
  const QImage slanted = drawn(MI, 8);
  Trigger("ID_WriteRegions");
  const QRect digits = slanted.rect().adjusted(0, 0, -10, 0);
  EXPECT_NE(drawn(MI, 8).copy(digits), slanted.copy(digits)) << "what is edited is slanted";
  QTest::keyClick(&Type(Cell(MI, 2), "12"), Qt::Key_Return);
  ASSERT_TRUE(IsEditorGone());
  AddRegion(MI, 4, 6);
  Select(MB, 0, MB, 0);
  const GridColours colours = ColoursFor(Operands().palette());
  const auto at = [](const QImage& image, double x, double y) {
    return image.pixelColor(static_cast<int>(x * (image.width() - 1)), static_cast<int>(y * (image.height() - 1)));
  };
  EXPECT_EQ(at(drawn(MI, 3), 0.5, 0.5), colours.writable);
  EXPECT_EQ(at(drawn(SI, 3), 0.5, 0.5), colours.readOnly);
  EXPECT_EQ(at(drawn(DBI, 3), 0.5, 0.5), colours.unusable);
  EXPECT_EQ(at(drawn(MI, 2), 1.0, 0.0), colours.edited) << "the corner";
  EXPECT_EQ(at(drawn(MI, 3), 1.0, 0.0), colours.writable);
  for (const int address : {4, 5, 6}) {
    const QImage cell = drawn(MI, address);
    EXPECT_EQ(at(cell, 0.5, 0.0), colours.region) << "the frame of a region";
    EXPECT_EQ(at(cell, 0.5, 1.0), colours.region);
    EXPECT_EQ(cell.pixelColor(cell.width() / 2, 1), colours.writable) << "thin, as it is not selected";
    EXPECT_EQ(at(cell, 0.0, 0.5), address == 4 ? colours.region : colours.writable);
    EXPECT_EQ(at(cell, 1.0, 0.5), address == 6 ? colours.region : colours.writable);
  }
  const QImage text = drawn(MI, 2);
  int left = text.width();
  for (int i = 0; i < text.width() * text.height(); ++i) {
    const QColor pixel = text.pixelColor(i % text.width(), i / text.width());
    if (pixel.lightness() < 100 && pixel != colours.edited) left = std::min(left, i % text.width());
  }
  EXPECT_GT(left, text.width() / 2) << "two digits stand at the right";
  EXPECT_LT(left, text.width()) << "and are drawn";
}

TEST_F(DataTypesWindowTest, TheStatusBarShowsHowFarItIsAndHowFast) {
  const std::tuple<ViewMode, std::uint64_t, double, std::size_t, const char*> rows[] = {
      {ViewMode::Idle, 0, 0, 0, "Not watching||"},
      {ViewMode::Busy, 2, 0, 3, "Busy||3 edited"},
      {ViewMode::Online, 0, 7, 0, "Watching|First pass: 1 of 3 regions|"},
      {ViewMode::Online, 1, 0, 1, "Watching|Counting|1 edited"},
      {ViewMode::Online, 1, 7.26, 0, "Watching|7.3 passes/s|"},
      {ViewMode::Online, 9, 72.6, 0, "Watching|73 passes/s|"},
      {ViewMode::Online, 9, 1e6, 0, "Watching|over 1000 passes/s|"},
  };
  ViewStatusBar bar(nullptr);
  for (const auto& [mode, passes, aSecond, edited, shown] : rows) {
    ViewStatus status;
    status.mode = mode;
    status.passes = passes;
    status.passesPerSecond = aSecond;
    status.edited = edited;
    status.done = 1;
    status.total = 3;
    bar.Show(status, "");
    std::string texts;
    for (const char* name : {"lblMode", "lblPasses", "lblEdited"}) {
      const auto& field = Find<QLabel>(bar, name);
      EXPECT_EQ(field.isHidden(), field.text().isEmpty()) << name;
      texts += (texts.empty() ? "" : "|") + field.text().toStdString();
    }
    EXPECT_EQ(texts, shown);
  }
}

TEST_F(DataTypesWindowTest, ColumnsBecomeWiderAndNarrowerWithinBoundsAndStaySo) {
  Open();
  const int usual = Operands().columnWidth(0);
  Trigger("VIEW_Wider");
  const int step = Operands().columnWidth(0) - usual;
  EXPECT_EQ(step, 2 * Operands().fontMetrics().horizontalAdvance('0'));
  for (int i = 0; i < 40; ++i) Trigger("VIEW_Narrower");
  const int least = Operands().columnWidth(0);
  EXPECT_GT(least, step);
  EXPECT_LT(least, usual);
  for (int i = 0; i < 100; ++i) Trigger("VIEW_Wider");
  EXPECT_LT(Operands().columnWidth(0), usual + 60 * step);
  for (int i = 0; i < 100; ++i) Trigger("VIEW_Narrower");
  Regions().setColumnWidth(static_cast<int>(RegionColumn::Description), 222);
  window->close();
  Open();
  EXPECT_EQ(Operands().columnWidth(0), least);
  EXPECT_EQ(Regions().columnWidth(static_cast<int>(RegionColumn::Description)), 222);
}

TEST_F(DataTypesWindowTest, ASilentControllerNeitherFreezesTheWindowNorHoldsItsUser) {
  Open();
  AddRegion(MI, 0, 9);
  BeSilent(std::chrono::milliseconds(400));
  EXPECT_LE(LongestGap(pacer, [&] { Trigger("ID_ReadRegions"); }), kLongestAllowedGap);
  EXPECT_THAT(Label("lblMessage"), HasSubstr("no reply"));
  EXPECT_THAT(Label("lblError"), HasSubstr("Last error"));
  EXPECT_EQ(Label("lblMode"), "Connection lost");

  BeSilent(std::chrono::seconds(60));
  for (const char* tool : {"ID_ReadRegions", "ID_OnLine"}) {
    CancelWhenBusy(*window);
    Trigger(tool);
    EXPECT_EQ(window->findChild<QPushButton*>("cmdCancelBusy"), nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(Tool("ID_OnLine").isChecked());
  }

  Link({}, std::chrono::seconds(30));
  std::string told;
  const auto busy = [this] { return window->findChild<QLabel*>("lblBusy"); };
  Online({{[&] { return !Value(MI, 0).empty(); }, [&] { isMuted = true; }},
          {[&] { return busy() && busy()->isVisible(); },
           [&] {
             told = busy()->text().toStdString();
             isMuted = false;
           }},
          {[&] { return !busy(); }, [] {}}});
  EXPECT_EQ(told, "Waiting for an answer of the controller");
}

TEST_F(DataTypesWindowTest, TheCursorGoesToANamedOperand) {
  Open();
  auto& line = Find<QLineEdit>(*window, "txtGoTo");
  const struct {
    const char* text;
    OperandTypeCode type;
    int address;
    const char* told;
  } cases[] = {
      {"mi 1000", MI, 1000, ""},
      {"mb 7", MB, 7, ""},
      {"12", MB, 12, ""},
      {"timer preset", TimerPreset, 0, ""},
      {"MI 9999", TimerPreset, 0, "MI has the addresses 0 to 4095."},
      {"DBI 1", TimerPreset, 0, "has no DBI"},
      {"QX 1", TimerPreset, 0, "no operand type \"QX\""},
  };
  for (const auto& each : cases) {
    Trigger("VIEW_GoTo");
    line.setText(each.text);
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(Operands().currentIndex(), Cell(each.type, each.address)) << each.text;
    EXPECT_THAT(Label("lblMessage"), HasSubstr(each.told));
    EXPECT_EQ(line.hasFocus(), *each.told != '\0');
  }
}

TEST_F(DataTypesWindowTest, ALossIsToldWholeAndWatchingGoesOnByItself) {
  Open();
  const auto& banner = Find<QWidget>(*window, "bnrController");
  AddRegion(MI, 0, 9);
  Online({});
  EXPECT_FALSE(banner.isVisible());
  EXPECT_EQ(Label("lblController"), "K670-67-C30 / K390-29-C30 on Simulated K670-67-C30");
  BeSilent(std::chrono::milliseconds(50));
  window->resize(640, 340);  // as on a small screen at 200 %
  Trigger("ID_OnLine");
  EXPECT_TRUE(banner.isVisible());
  QCoreApplication::processEvents();
  EXPECT_EQ(window->size(), QSize(640, 340)) << "the banner takes its room from the grids";
  EXPECT_THAT(Label("lblLoss"), AllOf(HasSubstr("no reply"), HasSubstr("Likely cause: "), HasSubstr("What to do: ")));
  EXPECT_THAT(Cell(MI, 0).data(Qt::AccessibleTextRole).toString().toStdString(), HasSubstr("connection was lost"));
  EXPECT_TRUE(Find<QPushButton>(*window, "cmdWatchAgain").isEnabled());
  const int whole = banner.height();
  EXPECT_EQ(Find<QPushButton>(*window, "cmdWatchAgain").text(), "&Go on line again");
  Find<QPushButton>(*window, "cmdFold").click();
  EXPECT_TRUE(WaitUntil([&] { return banner.height() <= whole - 2 * banner.fontMetrics().lineSpacing(); }));
  auto& byItself = Find<QCheckBox>(*window, "chkWatchAgain");
  EXPECT_TRUE(byItself.isEnabled());

  BeLinked();
  bool isWatched = false;
  When(
      *window, [&] { return Label("lblMode") == "Watching" && !banner.isVisible(); },
      [&] {
        isWatched = true;
        Tool("ID_OnLine").trigger();
      });
  byItself.click();
  EXPECT_TRUE(WaitUntil([&] { return isWatched && Label("lblMode") == "Not watching"; }));

  session.host.model = "Q50";
  EXPECT_TRUE(WaitUntil([&] { return banner.isVisible(); }));
  EXPECT_THAT(Label("lblDifference"), HasSubstr("The model is now Q50"));
}

TEST_F(DataTypesWindowTest, ASelectedRegionIsBroughtIntoSightAndHasAMenu) {
  Open();
  AddRegion(MI, 4000, 4010);
  Operands().setCurrentIndex(Cell(MB, 0));
  EXPECT_FALSE(Operands().viewport()->rect().intersects(Operands().visualRect(Cell(MI, 4000))));
  Regions().selectRow(0);
  EXPECT_TRUE(Operands().viewport()->rect().contains(Operands().visualRect(Cell(MI, 4000)).center()));
  EXPECT_EQ(Operands().currentIndex(), Cell(MB, 0));
  Regions().clearSelection();
  Operands().setFocus();
  Regions().setFocus(Qt::TabFocusReason);
  EXPECT_TRUE(WaitUntil([&] { return Tool("ID_RemoveRegion").isEnabled(); })) << "a keyboard alone reaches it";
  for (const auto& [grid, name] : {std::pair{&Regions(), "popRegions"}, {&Operands(), "popMenu"}}) {
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_F10, Qt::ShiftModifier);
    auto& menu = Find<QMenu>(*window, name);
    EXPECT_TRUE(menu.isVisible()) << name;
    menu.close();
  }
}

}  // namespace
}  // namespace kv::test
