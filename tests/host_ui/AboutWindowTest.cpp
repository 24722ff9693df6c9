#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QEnterEvent>

#include "base/ProgramVersion.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/VirtualPacer.h"
#include "host/ui/frmAbout.h"
#include "tests/host/HostFixture.h"
#include "tests/host_ui/WindowFixture.h"

namespace kv::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class AboutWindowTest : public WindowFixture {
 protected:
  void Open(const std::function<void(QDialog&)>& use) const {
    Run([&](QMainWindow& window) {
      Trigger(window, "ID_OnLine");
      WhenOpen<QDialog>(window, [&](QDialog& about) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&about, kPatience));
        use(about);
        about.close();
      });
      Trigger(window, "ID_About");
    });
  }
};

TEST_F(AboutWindowTest, TakesTheFormOfItsEdition) {
  const struct {
    const char* edition;
    const char* caption;
    QSize size;
    bool showsDistributor;
  } rows[] = {{"", "About Telepanel", {367, 404}, false}, {"USER_RBK", "About RBK", {699, 484}, true}};
  for (const auto& row : rows) {
    Put("KvTele2.ini", std::string("[KvTele2]\r\nEdition=") + row.edition + "\r\n");
    Open([&](QDialog& about) {
      EXPECT_EQ(about.windowTitle(), row.caption);
      EXPECT_EQ(about.size(), row.size);
      EXPECT_EQ(Find<QLabel>(about, "lblVersion").text(), QString("Version ") + ProgramVersion());
      for (const char* name : {"lblDistributor", "lblWebSiteRBK"}) {
        EXPECT_EQ(about.findChild<QLabel*>(name) != nullptr, row.showsDistributor) << name;
      }
    });
  }
}

TEST_F(AboutWindowTest, AddressesOpenByPointerAndByKeyAndShowIt) {
  SessionFixture fixture;
  FakeShell shell(fixture.log);
  shell.result = std::unexpected("A failure is not told.");
  MemoryClipboard clipboard;
  const VirtualPacer clock;
  frmAbout about(clsAbout(shell, "USER_RBK"), {fixture.shared, clock, clipboard, {}}, nullptr);
  about.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&about, kPatience));
  const std::pair<const char*, const char*> rows[] = {
      {"lblSupport", "mailto:support@korvantis.example"}, {"lblExport", "mailto:export@korvantis.example"},
      {"lblWebSite", "https://www.korvantis.example/"},   {"lblAurex", "https://www.korvantis.example/aurex/colour"},
      {"lblWebSiteRBK", "https://www.rbk.example/"},
  };
  for (const auto& [name, address] : rows) {
    auto& label = Find<QLabel>(about, name);
    const auto look = [&] { return label.grab().toImage(); };
    Find<QPushButton>(about, "cmdClose").setFocus();
    const QImage plain = look();
    QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
    QApplication::sendEvent(&label, &enter);
    EXPECT_NE(look(), plain) << name;
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&label, &leave);
    EXPECT_EQ(look(), plain) << name;
    QTest::mouseClick(&label, Qt::LeftButton);
    label.setFocus(Qt::TabFocusReason);
    EXPECT_NE(look(), plain) << name;
    QTest::keyClick(&label, Qt::Key_Return);
    const std::string call = std::string("Shell 'open' ") + address + " ''";
    EXPECT_THAT(fixture.Taken(), testing::ElementsAre(call, call));
  }
}

TEST_F(AboutWindowTest, TheReportHasWhatIsNeededAndNothingPrivate) {
  PutLink("Model=K220-22-R1\r\nModemNumber=0123456789\r\nModemInit=AT+CPIN=qwzx\r\n; a note: qwzx\r\n");
  Put("KvTeleExe.ini", "[KvTeleExe]\r\nLastUserName=Anna\r\nLastModel=K220-22-R1\r\n");
  Open([&](QDialog& about) {
    Find<QPushButton>(about, "cmdCopyReport").click();
    EXPECT_TRUE(Find<QLabel>(about, "lblCopied").isVisible());
    const std::string report = QApplication::clipboard()->text().toStdString();
    EXPECT_THAT(report, AllOf(HasSubstr(std::string("KvTeleExe ") + ProgramVersion()), HasSubstr("\n  Qt 6."),
                              HasSubstr("\nSession Default\n"), HasSubstr("\n  LastModel=K220-22-R1\n"),
                              HasSubstr("\n  ModemNumber=(left out)\n"), HasSubstr("[unit 1: identification]\n")));
    for (const char* text : {"Anna", "qwzx", "0123456789"}) EXPECT_THAT(report, Not(HasSubstr(text)));
  });
}

}  // namespace
}  // namespace kv::test
