#include <gmock/gmock.h>

#include <QClipboard>
#include <QLineEdit>
#include <QTableView>
#include <QToolBar>

#include "base/ProfileStrings.h"
#include "tests/host_ui/WindowFixture.h"
#include "tests/support/SecretForms.h"

namespace kv::test {
namespace {

using testing::HasSubstr;

class LogInWindowTest : public WindowFixture {
 protected:
  static void LogIn(QMainWindow& window, const QString& name, const QString& password, const char* button = "cmdOk") {
    WhenOpen<QDialog>(window, [=](QDialog& dialog) {
      Find<QLineEdit>(dialog, "txtUserName").setText(name);
      Find<QLineEdit>(dialog, "txtPassword").setText(password);
      Find<QPushButton>(dialog, button).click();
    });
    Trigger(window, "ID_LogIn");
  }
  static void LogOff(QMainWindow& window) {
    WhenOpen<QMessageBox>(window, [](QMessageBox& box) { Find<QPushButton>(box, "cmdYes").click(); });
    Trigger(window, "ID_LogOff");
  }
  // What the status bar shows of the user; empty: no field at all.
  static std::string Shown(const QMainWindow& window) {
    const auto& user = Find<QLabel>(window, "lblUser");
    return user.isVisible() ? user.toolTip().toStdString() : "";
  }
  [[nodiscard]] std::string KeptName() const {
    return ReadProfileString(home.Path() / "Sessions/Default/KvTeleExe.ini", "KvTeleExe", "LastUserName", "(none)");
  }
};

TEST_F(LogInWindowTest, WhoIsLoggedInStandsInTheStatusBarAndIsOfferedTheNextTime) {
  const QString longest(255, QChar(0xFC));  // of two bytes each
  const struct {
    QString name;
    const char* button;
    std::string shown;
    std::string kept;
    bool isToldNotKept;
  } rows[] = {
      {"Nobody", "cmdCancel", "", "(none)", false},
      {"Anna", "cmdOk", "Logged in: Anna", "Anna", false},
      {"Bert", "cmdCancel", "Logged in: Anna", "Anna", false},
      {"", "cmdOk", "Logged in: (no name)", "", false},  // the password is there, and can be logged off
      {"J\u00fcrgen", "cmdOk", "Logged in: J\u00fcrgen", "J\xFCrgen", false},
      {longest, "cmdOk", "Logged in: " + longest.toStdString(), "J\xFCrgen", true},
      {"\u017b\u00f3\u0142w", "cmdOk", "Logged in: \u017b\u00f3\u0142w", "J\xFCrgen", true},
      {"'x'", "cmdOk", "Logged in: 'x'", "J\xFCrgen", true},
  };
  Run([&](QMainWindow& window) {
    const int width = window.minimumSizeHint().width();
    for (const auto& row : rows) {
      LogIn(window, row.name, "12345678", row.button);
      EXPECT_EQ(Shown(window), row.shown);
      EXPECT_EQ(KeptName(), row.kept);
      EXPECT_EQ(Text(window, "lblMessage").starts_with("The user name was not kept"), row.isToldNotKept);
      EXPECT_LT(window.minimumSizeHint().width(), width + 300) << "a long name does not widen the window";
    }
    WhenOpen<QDialog>(window, [](QDialog& dialog) {
      EXPECT_EQ(Find<QLineEdit>(dialog, "txtUserName").selectedText(), "J\u00fcrgen");
      dialog.reject();
    });
    Trigger(window, "ID_LogIn");
    LogOff(window);
    EXPECT_EQ(Shown(window), "");
    LogIn(window, "", "");
    EXPECT_EQ(Shown(window), "") << "nobody, without a password";
  });
  EXPECT_EQ(KeptName(), "");
}

// Answers the questions for a password, and keeps what they said.
class Answers {
 public:
  explicit Answers(QStringList typed) : mTyped(std::move(typed)) {
    QObject::connect(&mTimer, &QTimer::timeout, [this] { Answer(QApplication::activeModalWidget()); });
    mTimer.start(1);
  }
  std::vector<std::string> questions;

 private:
  void Answer(QWidget* box) {
    if (!box || box->objectName() != "InputBox") return;
    const QString question = Find<QLineEdit>(*box, "txtInput").accessibleName();
    questions.push_back(question.left(question.indexOf(". ")).toStdString());
    const bool isLast = mTyped.isEmpty();
    if (!isLast) Find<QLineEdit>(*box, "txtInput").setText(mTyped.takeFirst());
    Find<QPushButton>(*box, isLast ? "cmdCancel" : "cmdOk").click();
  }
  QStringList mTyped;
  QTimer mTimer;
};

// On a line that echoes; afterwards nothing that the program has written tells the password.
TEST_F(LogInWindowTest, ThePasswordIsTriedBeforeAnybodyIsAskedAndIsToldNowhere) {
  constexpr const char* kPassword = "Zx7+kQ2h";
  PutTcp(ServedBy({"--model", "K220-22-R1", "--password", kPassword, "--fault", "echo"}));
  bool hasRegion = false;
  const auto write = [&hasRegion](QMainWindow& window, const char* value) {
    WhenOpen<QDialog>(window, [value, &hasRegion](QDialog& view) {
      auto& operands = Find<QTableView>(view, "vsfOperands");
      const QModelIndex cell = operands.model()->index(1, 7);
      operands.setCurrentIndex(cell);
      operands.selectionModel()->select(cell, QItemSelectionModel::ClearAndSelect);
      QCoreApplication::processEvents();
      if (!std::exchange(hasRegion, true)) Find<QAction>(view, "ID_AddRegion").trigger();
      operands.model()->setData(cell, value);
      Find<QAction>(view, "ID_WriteRegions").trigger();
      view.close();
    });
    Trigger(window, "ID_DataTypes");
  };
  const struct {
    const char* logIn;  // null: log off
    QStringList typed;
    std::vector<std::string> questions;
  } rows[] = {
      {kPassword, {}, {}},
      {"wrong", {kPassword}, {"The password of the log-in is wrong here"}},
      {"a password that is far too long", {kPassword}, {"The controller does this only with its password"}},
      {nullptr, {}, {"The controller does this only with its password"}},  // the access has gone, too
  };
  const SecretForms secret(kPassword);
  int value = 0;
  Run([&](QMainWindow& window) {
    Trigger(window, "ID_OnLine");
    for (const auto& row : rows) {
      row.logIn ? LogIn(window, "Anna", row.logIn) : LogOff(window);
      Answers answers(row.typed);
      write(window, std::to_string(++value).c_str());  // each another one: what is not edited is asked about
      EXPECT_EQ(answers.questions, row.questions) << (row.logIn ? row.logIn : "logged off");
      EXPECT_EQ(Text(window, "lblOnline"), "On line");
    }
    WhenOpen<QDialog>(window, [](QDialog& about) {
      Find<QPushButton>(about, "cmdCopyReport").click();
      about.close();
    });
    Trigger(window, "ID_About");
    const std::string report = QApplication::clipboard()->text().toStdString();
    EXPECT_THAT(report, HasSubstr("**<0D>   [unit 1: access]")) << "the password was given";
    EXPECT_THAT(report, HasSubstr("<xx")) << "the line does echo";
    EXPECT_FALSE(secret.AreIn(report)) << report;
  });
  EXPECT_THAT(secret.FilesIn(home.Path()), testing::IsEmpty());
}

}  // namespace
}  // namespace kv::test
