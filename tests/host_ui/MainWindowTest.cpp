#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QMenu>
#include <QRegularExpression>
#include <QScreen>
#include <QTableView>
#include <QTableWidget>
#include <QToolBar>
#include <fstream>

#include "KvTele2/PagesFile.h"
#include "apps/KvTeleExe/ToolWindowTable.h"
#include "base/ScopeGuard.h"
#include "tests/desktop_ui/UsableWindow.h"
#include "tests/host_ui/WindowFixture.h"
#include "tests/host_ui/WindowPlaces.h"
#include "tests/support/Recorded.h"

namespace kv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using MainWindowTest = WindowFixture;

TEST_F(MainWindowTest, AControllerOfEachKindGoesOnLine) {
  const struct {
    const char* selected;
    const char* simulated;
    const char* reports;
    const char* os;
    const char* becomes;  // the selected model
  } cases[] = {
      {"K220-22-R1", "K220-22-R1", "K220-22-R1", "4.60", "K220-22-R1"},
      {"K220-22-R1", "K670-67-T40", "K670-67-T40 / K390-29-T40", "1.10", "K670-67-T40 / K390-29-T40"},
      {"K220-22-R1", "K230", "K230", "1.10", "K230"},
      {"Q50", "Q50", "Q50-2-R34", "4.60", "Q50"},
      {"Q50", "BRIO", "BRIO-R16", "4.60", "BRIO"},
  };
  for (const auto& each : cases) {
    PutLink(std::string("Model=") + each.simulated + "\r\n");
    Put("KvTeleExe.ini", std::string("[KvTeleExe]\r\nLastModel=") + each.selected + "\r\n");
    Run([&](QMainWindow& window) {
      EXPECT_EQ(Text(window, "lblOnline"), "Off line");
      Trigger(window, "ID_OnLine");
      EXPECT_EQ(Text(window, "lblOnline"), "On line") << each.simulated << ": " << Text(window, "lblMessage");
      EXPECT_EQ(Text(window, "lblModel"), each.reports);
      EXPECT_EQ(Text(window, "lblOs"), each.os);
      EXPECT_EQ(Text(window, "lblBuild"), "19");
      EXPECT_EQ(Text(window, "lblState"), "Running");
      EXPECT_EQ(Text(window, "lblErrors"), "0");
      EXPECT_EQ(Find<QComboBox>(window, "cboModel").currentText(), each.becomes);
      EXPECT_FALSE(Find<QComboBox>(window, "cboModel").isEnabled());
      const std::string exchanges = Text(window, "lblExchanges");
      Trigger(window, "HOST_Trace");
      QApplication::processEvents();
      EXPECT_NE(Text(window, "lblExchanges"), exchanges) << "it is asked at once, behind each command";
      Trigger(window, "HOST_OffLine");
      EXPECT_EQ(Text(window, "lblOnline"), "Off line");
      EXPECT_EQ(Text(window, "lblModel"), "-");
    });
  }
}

TEST_F(MainWindowTest, OneButtonOfTheStartPageNeedsNothing) {
  PutTcp(9);  // nobody listens there
  const std::string link = TemporaryFolder::Content(home.Path() / "Sessions/Default/KvCmDrv1.ini");
  Run([&](QMainWindow& window) {
    Find<QPushButton>(window, "cmdSimulate").click();
    EXPECT_EQ(Text(window, "lblConnection"), "Simulated K670 - K670 - Running") << Text(window, "lblMessage");
    EXPECT_EQ(Text(window, "lblAddress"), "Simulated K670-67-C30 / K390-29-C30");
    Trigger(window, "HOST_OffLine");
    const auto isOnCard = [](const QLabel* label) { return label->text().startsWith("Last on line 20"); };
    EXPECT_EQ(std::ranges::count_if(window.findChildren<QLabel*>(), isOnCard), 1);
    Find<QPushButton>(window, "cmdStart Default").click();
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblSession") == "Session Default"; }));
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblTrouble").contains("127.0.0.1"); }));
  });
  EXPECT_EQ(TemporaryFolder::Content(home.Path() / "Sessions/Default/KvCmDrv1.ini"), link);
}

TEST_F(MainWindowTest, AControllerThatCannotBeUsedIsRefusedInABox) {
  PutTcp(ServedBy({"--model", "K670-67-T40", "--os", "1.0", "--build", "18"}));
  Run([&](QMainWindow& window) {
    const Boxes boxes;
    Trigger(window, "ID_OnLine");
    constexpr const char* kTold = "(O/S) 1.0(19) and higher";
    EXPECT_THAT(boxes.texts, ElementsAre(HasSubstr(kTold)));
    EXPECT_EQ(Text(window, "lblOnline"), "Off line");
    EXPECT_THAT(Text(window, "lblTrouble"), HasSubstr(kTold));
    EXPECT_THAT(Text(window, "lblMessage"), StartsWith("Refused: "));
    EXPECT_NE(Text(window, "lblSerial"), "-") << "what was learnt is shown";
    EXPECT_TRUE(Find<QAction>(window, "ID_OnLine").isEnabled());
  });
}

TEST_F(MainWindowTest, LookingForASilentControllerTakesNothingFromTheUser) {
  PutTcp(ServedBy({"--model", "K220-22-R1"}), "TimeOut=20000\r\nTries=1\r\n");
  Run([&](QMainWindow& window) {
    Trigger(window, "ID_OnLine");
    auto& log = Find<QTableView>(window, "tblLog");
    log.setFocus();
    kvsim->Signal(SIGSTOP);  // it hears everything and says nothing any more
    When(
        window, [&] { return Text(window, "lblOnline") == "No answer"; },
        [&] {  // long before the time-out
          EXPECT_EQ(Text(window, "lblConnection"), "Default - K220 - No answer");
          EXPECT_EQ(Text(window, "lblRetry"), "Looking for the controller");
          EXPECT_EQ(window.findChild<QWidget*>("busyOverlay"), nullptr);
          EXPECT_EQ(window.focusWidget(), &log);
          Trigger(window, "HOST_OffLine");
        });
    EXPECT_TRUE(WaitUntil([&] { return Text(window, "lblOnline") == "Off line"; }));
    EXPECT_EQ(Text(window, "lblTrouble"), "");
  });
}

TEST_F(MainWindowTest, BadSettingsAreToldAndLeftAlone) {
  const std::string settings = "[KvCmDrv1]\r\nTransport=serial\r\nSerialPort=COM77\r\nTries=many\r\n";
  const auto link = Put("KvCmDrv1.ini", settings);
  const auto tools = Put("KvTeleExe.ini", "[KvTeleExe\r\nLastModel");
  Put("KvTele2.ini", "[KvTele2]\r\nRecentPages0=gone.kta\r\n");
  Run([&](QMainWindow& window) {
    EXPECT_EQ(Text(window, "lblMessage"), "KvCmDrv1.ini, Tries: expected a number from 1 to 10; using 3");
    EXPECT_EQ(Find<QComboBox>(window, "cboModel").currentText(), "K220-22-R1");
    Trigger(window, "ID_OnLine");
    EXPECT_THAT(Text(window, "lblTrouble"), HasSubstr("COM77"));
    const Boxes boxes;
    Find<QAction>(window, "HOST_RecentPages").menu()->actions().front()->trigger();
    EXPECT_THAT(boxes.texts, ElementsAre(HasSubstr("gone.kta")));
  });
  EXPECT_EQ(TemporaryFolder::Content(link), settings);
  EXPECT_EQ(TemporaryFolder::Content(tools), "[KvTeleExe\r\nLastModel");

  Put("KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K9000\r\n");
  const auto pages = Put("mill.kta", PrintPagesFile({"Mill", "K220-22-R1"}));
  Put("KvTele2.ini", "[KvTele2]\r\nRecentPages0=" + pages.string() + "\r\n");
  Run([&](QMainWindow& window) {
    Find<QAction>(window, "HOST_RecentPages").menu()->actions().front()->trigger();
    EXPECT_EQ(Text(window, "lblPages"), "mill.kta: project Mill, model K220-22-R1");
    EXPECT_EQ(Find<QComboBox>(window, "cboModel").placeholderText(), "K9000");
    Find<QComboBox>(window, "cboModel").textActivated("K330");
    EXPECT_EQ(Find<QComboBox>(window, "cboModel").currentText(), "K330");
    for (QAction* each : window.findChildren<QAction*>()) {
      if (each->text() == "Q50") each->trigger();  // in the menu
    }
    EXPECT_EQ(Find<QComboBox>(window, "cboModel").currentText(), "Q50");
  });
}

TEST_F(MainWindowTest, AnotherSessionIsActivatedInItsWindow) {
  std::filesystem::create_directories(home.Path() / "Sessions" / "Bakery");
  home.Put("Sessions/Bakery/KvCmDrv1.ini", "[KvCmDrv1]\r\nTransport=tcp\r\nHost=plc.example\r\n");
  home.Put("Sessions/Bakery/KvTeleExe.ini", "[KvTeleExe]\r\nLastModel=K330\r\n");
  Run([&](QMainWindow& window) {
    Trigger(window, "ID_OnLine");
    WhenOpen<QDialog>(window, [](QDialog& dialog) {
      auto& list = Find<QTableWidget>(dialog, "flgSession");
      list.setCurrentCell(0, 0);
      EXPECT_EQ(list.item(0, 1)->text(), "K330");
      EXPECT_EQ(list.item(0, 2)->text(), "plc.example:20300, unit 1");
      EXPECT_EQ(list.item(1, 2)->text(), "Simulated K220-22-R1");
      Find<QPushButton>(dialog, "cmdClose").click();
    });
    Trigger(window, "ID_Session");
    EXPECT_EQ(Text(window, "lblSession"), "Session Bakery");
    EXPECT_EQ(Text(window, "lblLink"), "plc.example:20300, unit 1");
    EXPECT_EQ(Find<QComboBox>(window, "cboModel").currentText(), "K330") << "its own, not that of the session before";
    EXPECT_EQ(Text(window, "lblOnline"), "Off line");
    EXPECT_TRUE(window.isEnabled());
  });
}

// Every word, state and order that a user meets when a window opens: tests/host_ui/looks.txt. Who has changed a window
// renews the file with KV_RENEW_LOOKS=1 in the environment, and reads its difference.
TEST_F(MainWindowTest, EveryWindowReadsAsItIsWrittenDown) {
  home.PutCopy("help/pages", KV_HELP_FOLDER "/pages");
  std::string looks;
  const auto add = [&](const QWidget& window) {
    std::string places;
    EXPECT_TRUE(WaitUntil([&] { return std::exchange(places, PlacesText(window)) == places; }));
    looks += WindowLook(window).Text() + places;
  };
  const auto addNext = [&](QWidget& window, const char* command) {
    WhenOpen<QDialog>(window, [&](QDialog& dialog) {
      EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog, kPatience));
      add(dialog);
      dialog.reject();
    });
    Find<QAction>(window, command).trigger();
  };
  Run([&](QMainWindow& window) {
    add(window);
    for (const auto& [command, name] : {std::pair("HOST_Trace", "frmTrace"), {"ID_Help", "frmHelp"}}) {
      Trigger(window, command);
      for (QWidget* other : QApplication::topLevelWidgets()) {
        if (other->objectName() != name) continue;
        EXPECT_TRUE(QTest::qWaitForWindowActive(other, kPatience));
        add(*other);
      }
    }
    for (const char* command : {"ID_LogIn", "ID_About", "ID_Session", "ID_Journal", "ID_ComParams", "ID_Modem",
                                "ID_DumpPLC", "ID_ImportCacheFromPLC"})
      addNext(window, command);
    WhenOpen<QDialog>(window, [&](QDialog& view) {
      EXPECT_TRUE(QTest::qWaitForWindowActive(&view, kPatience));
      add(view);
      addNext(view, "ID_ExportToCSV");
      view.close();
    });
    Trigger(window, "ID_DataTypes");
    WhenOpen<QDialog>(window, [&](QDialog& downloader) {
      const auto& ask = Find<QPushButton>(downloader, "cmdIdentify");
      const auto& controller = Find<QLabel>(downloader, "lblController");
      EXPECT_TRUE(WaitUntil([&] { return ask.isEnabled() && controller.text().contains("serial number"); }));
      add(downloader);
      downloader.reject();
    });
    Trigger(window, "ID_Downloader");
  });
  looks = QString::fromStdString(looks)
              .replace(QString::fromStdString(home.Path().string()), "HOME")
              .replace(QRegularExpression("serial number [0-9]+"), "serial number N")
              .replace(QRegularExpression("Version [0-9.]+"), "Version N")
              .toStdString();
  const std::filesystem::path file = KV_TEST_DATA "/host_ui/looks.txt";
  if (qEnvironmentVariableIsSet("KV_RENEW_LOOKS")) std::ofstream(file) << looks;
  ExpectSameLines(ToldHere(looks), ToldHere(TemporaryFolder::Content(file)), "Q");
}

TEST_F(MainWindowTest, EveryToolWindowOpensFromTheMenu) {
  Run([&](QMainWindow& window) {
    ExpectCommandsCanBeRead(window);
    ExpectControlsCanBeRead(window);
    for (const int width : {1600, 600}) {
      window.resize(width, window.height());
      const auto style = width > 1000 ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly;
      EXPECT_TRUE(WaitUntil([&] { return Find<QToolBar>(window, "toolBar").toolButtonStyle() == style; })) << width;
    }
    for (const ToolWindowRow& row : ToolWindowTable()) {
      bool isOpen = false;
      WhenOpen<QDialog>(window, [&](QDialog& dialog) {
        isOpen = QTest::qWaitForWindowActive(&dialog, kPatience);
        ExpectControlsCanBeRead(dialog);
        ExpectCommandsCanBeRead(dialog);
        for (const auto* view : dialog.findChildren<QAbstractItemView*>()) {
          const QAbstractItemModelTester tester(view->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        }
        dialog.close();
      });
      Trigger(window, std::string(row.id).c_str());
      EXPECT_TRUE(isOpen) << row.id;
    }
  });
}

TEST_F(MainWindowTest, TheTraceStandsBesideTheToolsWithTheTimeOfDay) {
  Run([&](QMainWindow& window) {
    Trigger(window, "HOST_Trace");
    Trigger(window, "ID_OnLine");
    QWidget* trace = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (each->objectName() == "frmTrace") trace = each;
    }
    ASSERT_NE(trace, nullptr);
    auto& frames = Find<QTableView>(*trace, "flgTrace");
    ASSERT_TRUE(WaitUntil([&] { return frames.model()->rowCount() > 2; }));
    const QString time = frames.model()->index(0, 0).data().toString();
    EXPECT_TRUE(QRegularExpression("^([0-9]{2}:){2}[0-9]{2}[.][0-9]{6}$").match(time).hasMatch()) << time.toStdString();
    WhenOpen<QDialog>(window, [&](QDialog& dialog) {
      EXPECT_EQ(dialog.windowModality(), Qt::WindowModal) << "the trace answers beside it";
      dialog.reject();
    });
    Trigger(window, "ID_Session");
  });
}

TEST_F(MainWindowTest, FitsTheScreenWhereLettersAreSeveralTimesAsLarge) {
  const QFont usual = QApplication::font();
  for (const int times : {3, 4}) {
    QFont large = usual;
    large.setPointSizeF(times * usual.pointSizeF());
    QApplication::setFont(large);
    Run([](QMainWindow& window) {
      const QSize screen = window.screen()->availableSize();
      EXPECT_TRUE(WaitUntil([&] { return window.size().boundedTo(screen) == window.size(); }))
          << window.width() << " x " << window.height();
      EXPECT_TRUE(window.windowTitle().contains("Off line"));
    });
  }
  QApplication::setFont(usual);
}

// An administrator asks over a remote line, where there is no screen.
TEST(ProgramTest, HelpAndVersionNeedNoDisplay) {
  for (const char* asked : {"--help", "--version"}) {
    QProcess program;
    QProcessEnvironment bare = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) bare.remove(name);
    program.setProcessEnvironment(bare);
    program.start(KVTELEEXE_PROGRAM, {asked});
    ASSERT_TRUE(program.waitForFinished(kPatience));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << asked;
    EXPECT_NE(program.readAllStandardOutput(), "") << asked;
  }
}

TEST_F(MainWindowTest, TheLogHasItsMenu) {
  Run([&](QMainWindow& window) {
    Trigger(window, "ID_OnLine");
    auto& log = Find<QTableView>(window, "tblLog");
    ASSERT_GT(log.model()->rowCount(), 0);
    const QAbstractItemModelTester tester(log.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    When(
        window, [] { return QApplication::activePopupWidget() != nullptr; },
        [&] {
          QWidget* menu = QApplication::activePopupWidget();
          EXPECT_EQ(menu->actions(),
                    (QList<QAction*>{&Find<QAction>(window, "HOST_CopyLog"), &Find<QAction>(window, "HOST_ClearLog")}));
          QTest::keyClick(menu, Qt::Key_L);
        });
    QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(&log, &key);
    EXPECT_EQ(log.model()->rowCount(), 0);
  });
}

TEST_F(MainWindowTest, AMissingDefaultSessionIsToldAndTheProgramGoesOn) {
  std::filesystem::remove(home.Path() / "Sessions" / "Default");
  const Boxes boxes;
  Run([&](QMainWindow& window) { EXPECT_EQ(Text(window, "lblSession"), "Session Default"); });
  EXPECT_THAT(boxes.texts, Contains("Default Session not found"));
}

}  // namespace
}  // namespace kv::test
