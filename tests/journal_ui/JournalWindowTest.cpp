#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>

#include "base/PathText.h"
#include "desktop/ScriptedPrompts.h"
#include "journal/ui/frmJournal.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/journal/JournalFixture.h"

namespace kv {
namespace {

using namespace kv::test;
using ::testing::HasSubstr;

struct JournalWindowTest : ::testing::Test, JournalFixture {
  ScriptedPrompts prompts{[](const std::string& what) { ADD_FAILURE() << what; }};
  std::unique_ptr<frmJournal> window;

  void Open() {
    window = std::make_unique<frmJournal>(JournalServices{places, SystemJournalDisk(), prompts, pacer, pacer, "anna"},
                                          nullptr);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kPatience));
  }
  [[nodiscard]] QTableView& List() const { return Find<QTableView>(*window, "tblChanges"); }
  [[nodiscard]] std::string Text(const char* label) const { return Find<QLabel>(*window, label).text().toStdString(); }
  [[nodiscard]] std::string Lines(const char* field) const {
    return Find<QPlainTextEdit>(*window, field).toPlainText().toStdString();
  }
  void Enter(const char* field, const char* text) const { Find<QLineEdit>(*window, field).setText(text); }
};

TEST_F(JournalWindowTest, ShowsWhoChangedWhatTheNewestFirst) {
  (void)End(Begin());
  (void)Begin("restore the clone plc.kdf");
  Open();
  const QAbstractItemModelTester tester(List().model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  EXPECT_THAT(Text("lblVerdict"), HasSubstr("The journal is in order: 4 records"));
  EXPECT_THAT(Lines("txtFindings"), HasSubstr("Begun and not ended: 4."));
  EXPECT_EQ(List().model()->rowCount(), 3);
  EXPECT_EQ(List().model()->index(0, 4).data().toString(), "restore the clone plc.kdf");
  EXPECT_EQ(List().model()->index(0, 5).data().toString(), "begun, and not ended");
  List().selectRow(1);
  EXPECT_THAT(Lines("txtDetails"), HasSubstr("\nMI 0: 1 -> 2\nMI 1: not known -> 3"));

  Enter("txtOperand", "MI 2");
  EXPECT_EQ(List().model()->rowCount(), 0);
  EXPECT_EQ(Text("lblCount"), "0 entries of 3");
  EXPECT_FALSE(Find<QPushButton>(*window, "cmdExport").isEnabled());
  EXPECT_EQ(Lines("txtDetails"), "");
  Enter("txtOperand", "recipe");
  EXPECT_THAT(Text("lblCount"), HasSubstr("Nothing is shown: \"recipe\" is no operand"));
  Enter("txtOperand", "mi 1");
  Enter("txtUser", "ANNA");
  Enter("txtDay", "2024-01");
  EXPECT_EQ(List().model()->rowCount(), 2);

  const std::string file = Utf8FromPath(temporary.Path() / "changes.csv");
  prompts.Choose(file);
  Find<QPushButton>(*window, "cmdExport").click();
  EXPECT_THAT(Content(temporary.Path() / "changes.csv"), HasSubstr("head of the journal"));
  prompts.Choose(Utf8FromPath(temporary.Path() / "no folder" / "changes.csv"));
  prompts.Press(PromptAnswer::Ok);
  Find<QPushButton>(*window, "cmdExport").click();
}

TEST_F(JournalWindowTest, TellsAtTheTopWhatWasDoneToTheJournal) {
  (void)End(Begin());
  Open();
  Put(LinesOf(Bytes()).front());
  Find<QPushButton>(*window, "cmdRefresh").click();
  EXPECT_EQ(Text("lblVerdict"), "The journal is not in order: 1 finding in 1 record.");
  EXPECT_THAT(Lines("txtFindings"), HasSubstr("The journal ends with record 1, before record 3"));
  prompts.Enter("put back from the backup");
  Find<QPushButton>(*window, "cmdAcknowledge").click();
  EXPECT_THAT(Lines("txtFindings"), HasSubstr("Acknowledged in record 3 by anna: put back from the backup"));
  EXPECT_FALSE(Find<QPushButton>(*window, "cmdAcknowledge").isEnabled());
  EXPECT_LE(List().horizontalHeader()->length(), List().viewport()->width()) << "all columns are in sight";
}

}  // namespace
}  // namespace kv
