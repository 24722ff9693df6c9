#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QTableWidget>
#include <functional>
#include <memory>

#include "editors/ui/frmHexSelector.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace kv::test;

class HexSelectorWindowTest : public ::testing::Test {
 protected:
  // What SelectChar returns when the user does this in the open window.
  std::optional<std::uint8_t> Select(const std::function<void(frmHexSelector&)>& act) {
    WhenOpen<frmHexSelector>(window, act);
    return clsHexSelector(window).SelectChar();
  }
  static QTableWidget& Grid(frmHexSelector& open) { return Find<QTableWidget>(open, "flgLowChars"); }
  static void Press(frmHexSelector& open, const char* button) { Find<QAbstractButton>(open, button).click(); }
  static void ClickRow(frmHexSelector& open, int row) {
    QTableWidget& grid = Grid(open);
    grid.scrollToItem(grid.item(row, 0));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualItemRect(grid.item(row, 1)).center());
  }

  TemporaryFolder home;
  frmHexSelector window{home.Path() / "Windows.ini", nullptr};
};

TEST_F(HexSelectorWindowTest, ConfirmsWhatWasChosenByMouseOrKeyboard) {
  EXPECT_EQ(window.windowTitle(), "Choose CSV Separator");
  const std::pair<std::optional<std::uint8_t>, std::function<void(frmHexSelector&)>> ways[] = {
      {std::nullopt, [](auto& open) { ClickRow(open, 9), Press(open, "cmdCancel"); }},
      {std::nullopt, [](auto& open) { QTest::keyClick(&Grid(open), Qt::Key_Escape); }},
      {44, [](auto& open) { Press(open, "cmdOK"); }},
      {9, [](auto& open) { ClickRow(open, 9), Press(open, "cmdOK"); }},
      {44, [](auto& open) { Press(open, "cmdOK"); }},  // each time anew
      {59, [](auto& open) { QTest::keyClick(&Grid(open), ';'), QTest::keyClick(&Grid(open), Qt::Key_Return); }},
      {255, [](auto& open) { ClickRow(open, 255), Press(open, "cmdOK"); }},
      {0, [](auto& open) { ClickRow(open, 0), Press(open, "cmdOK"); }},
      {45, [](auto& open) { QTest::keyClick(&Grid(open), Qt::Key_Down), QTest::keyClick(&Grid(open), Qt::Key_Enter); }},
      {124,
       [](auto& open) {
         ClickRow(open, 124);
         const QRect row = Grid(open).visualItemRect(Grid(open).item(124, 1));
         QTest::mouseDClick(Grid(open).viewport(), Qt::LeftButton, {}, row.center());
       }},
  };
  for (const auto& [code, act] : ways) EXPECT_EQ(Select(act), code);
}

TEST_F(HexSelectorWindowTest, NamesTheCharactersAndMarksTheFitAndUnfit) {
  QTableWidget& grid = Grid(window);
  ASSERT_EQ(grid.rowCount(), 256);
  for (const auto& [row, colour] :
       {std::pair(9, QColor(0, 255, 0)), {10, QColor(255, 0, 0)}, {13, QColor(255, 0, 0)}}) {
    for (int column = 0; column < grid.columnCount(); ++column) {
      EXPECT_EQ(grid.item(row, column)->background().color(), colour);
      EXPECT_EQ(grid.item(row, column)->foreground().color(), QColor(Qt::black));  // read on both in a dark theme, too
    }
  }
  EXPECT_TRUE(grid.item(10, 0)->toolTip().startsWith("Ends a line"));
  EXPECT_EQ(grid.item(11, 0)->background().style(), Qt::NoBrush);
  for (const auto& [row, name] : {std::pair(25, "(EM)"), {31, "(US)"}, {44, ","}, {128, "\u20AC"}, {255, "\u00FF"}}) {
    EXPECT_TRUE(grid.item(row, 2)->text().startsWith(name)) << name;
  }
}

}  // namespace
}  // namespace kv
