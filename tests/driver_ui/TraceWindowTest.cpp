#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QTableView>
#include <map>
#include <sstream>

#include "KvCmDrv1/ui/TraceModel.h"
#include "KvCmDrv1/ui/frmTrace.h"
#include "tests/driver_ui/DialogFixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using namespace kv::test;

TEST(TraceModelTest, FollowsTheTraceOverItsWholeLengthAndPastIt) {
  const auto trace = std::make_shared<Trace>();
  TraceModel model(trace);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  EXPECT_FALSE(model.headerData(TraceModel::ColumnCount, Qt::Horizontal, Qt::DisplayRole).isValid());
  int number = 0;
  for (const int added : {0, 1, 2, 996, 1, 1, 700, 1000, 2500}) {
    for (int i = 0; i < added; ++i) {
      trace->Add(Instant{} + std::chrono::microseconds(number), Trace::Direction::Note, std::to_string(number));
      ++number;
    }
    model.Update();
    ASSERT_EQ(model.rowCount(), std::min(number, 1000));
    for (const int row : {0, model.rowCount() / 2, model.rowCount() - 1}) {
      if (number == 0) break;
      const int expected = number - model.rowCount() + row;
      EXPECT_EQ(model.index(row, TraceModel::Text).data().toInt(), expected);
    }
  }
}

// A screen is asked for all day; what else has passed is worth more to who reads an error report.
TEST(TraceModelTest, QuestionsThatGoWellPushOutOnlyTheirLikes) {
  const auto trace = std::make_shared<Trace>();
  TraceModel model(trace);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  const auto add = [&](std::initializer_list<const char*> texts) {
    for (const char* text : texts) trace->Add(Instant{}, Trace::Direction::Note, text);
  };
  for (int i = 0; i < 998; ++i) add({"write"});
  const auto poll = [&](std::initializer_list<const char*> texts) {
    const std::uint64_t from = trace->Total();
    add(texts);
    if (from % 20 == 0) model.Update();  // the window looks at any moment
    trace->SetPollAside(from);
  };
  poll({"question", "no answer", "question", "answer"});
  for (int i = 0; i < 400; ++i) poll({"question", "answer"});
  add({"write"});
  model.Update();
  std::map<std::string, int> shown, reported;
  for (int row = 0; row < model.rowCount(); ++row) {
    ++shown[model.index(row, TraceModel::Text).data().toString().toStdString()];
  }
  std::istringstream report(trace->Text());
  for (std::string line; std::getline(report, line);) ++reported[line.substr(line.find("--- ") + 4)];
  const std::map<std::string, int> kept{{"write", 996}, {"question", 102}, {"no answer", 1}, {"answer", 101}};
  EXPECT_EQ(reported, kept);
  EXPECT_GE(shown["write"], 994) << "no more than was under way when it looked";
  EXPECT_EQ(shown["question"], 102);
}

class TraceWindowTest : public ::testing::Test, protected DialogFixture {
 protected:
  void Talk() {
    const auto channel = driver.GetChannel();
    ASSERT_TRUE(channel);
    EXPECT_TRUE(channel->ReadMI(0, 60, 1));
  }
  static frmTrace* Window() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (auto* trace = dynamic_cast<frmTrace*>(window)) return trace;
    }
    return nullptr;
  }
  static QAction& Command(const char* name) { return Find<QAction>(*Window(), name); }
  static const QAbstractItemModel& Rows() { return *Find<QTableView>(*Window(), "flgTrace").model(); }
  static QString Last(TraceModel::Column column) {
    return Rows().index(Rows().rowCount() - 1, column).data().toString();
  }
};

TEST_F(TraceWindowTest, ShowsFramesAsTheyPassUntilItIsHalted) {
  dialogs.ShowTrace();
  Talk();
  ASSERT_TRUE(WaitUntil([] { return Rows().rowCount() > 2; }));
  EXPECT_EQ(Last(TraceModel::Direction), "Received");
  EXPECT_TRUE(Last(TraceModel::Text).startsWith("/01RO"));
  EXPECT_EQ(Last(TraceModel::Meaning), "unit 1: read MI 0..59");

  Command("cmdCopy").trigger();
  EXPECT_EQ(clipboard.GetText(), driver.GetTrace().Text());
  auto& table = Find<QTableView>(*Window(), "flgTrace");
  EXPECT_GT(2 * table.width(), Window()->width());
  table.setCurrentIndex(table.model()->index(0, 1));
  Command("cmdCopy").trigger();
  EXPECT_TRUE(clipboard.GetText().ends_with("--- Connected to Simulated K220-22-R1\n")) << clipboard.GetText();

  const QAbstractItemView& view = table;
  EXPECT_GE(table.columnWidth(TraceModel::Time), view.sizeHintForColumn(TraceModel::Time)) << "in whatever font";
  Command("cmdPause").trigger();
  const int halted = Rows().rowCount();
  Talk();
  pacer.Sleep(250ms);
  EXPECT_EQ(Rows().rowCount(), halted);
  Command("cmdPause").trigger();
  EXPECT_TRUE(WaitUntil([&] { return Rows().rowCount() > halted; }));
  QTest::keyClick(Window(), Qt::Key_Escape);
  EXPECT_FALSE(Window()->isVisible());
}

TEST_F(TraceWindowTest, WritesToAFileUntilItIsEnded) {
  dialogs.ShowTrace();
  const auto file = folder.Path() / "trace.txt";
  prompts.Choose(Utf8FromPath(file));
  Command("cmdWriteToFile").trigger();
  EXPECT_TRUE(Command("cmdWriteToFile").isChecked());
  Talk();
  Command("cmdWriteToFile").trigger();
  EXPECT_FALSE(Command("cmdWriteToFile").isChecked());
  EXPECT_EQ(TemporaryFolder::Content(file), driver.GetTrace().Text());
}

TEST_F(TraceWindowTest, OpenedFromTheSettingsItAnswersBesideThemAndStaysWhereItIs) {
  QWidget owner;
  owner.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&owner, kPatience));
  QRect place;
  InSettings([&](QDialog& dialog) {
    Press(dialog, "cmdTrace");
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window(), kPatience));
    QTest::keyClick(Window()->windowHandle(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(Command("cmdPause").isChecked());
    Window()->move(60, 70);
    place = Window()->geometry();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog, kPatience));
    dialog.reject();
  });
  EXPECT_TRUE(Window()->isVisible());
  EXPECT_EQ(Window()->geometry(), place);
  EXPECT_NE(QApplication::activeWindow(), Window()) << "the work goes on where the settings were opened";
}

}  // namespace
}  // namespace kv
