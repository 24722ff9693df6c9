#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QScrollBar>

#include "KvCmDrv1/SettingsFile.h"
#include "tests/driver_ui/DialogFixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using namespace kv::test;
using ::testing::ElementsAre;

class LinkDialogsTest : public ::testing::Test, protected DialogFixture {
 protected:
  // As a user does it: line edits are typed into, lists chosen from.
  static void Enter(const QDialog& dialog, const std::string& control, const std::string& value) {
    if (auto* combo = dialog.findChild<QComboBox*>(control.c_str())) {
      const int index = combo->findText(value.c_str(), Qt::MatchStartsWith);
      if (index >= 0) {
        combo->setCurrentIndex(index);
        emit combo->activated(index);
      } else {
        combo->setEditText(value.c_str());
      }
      return;
    }
    auto& edit = Find<QLineEdit>(dialog, control.c_str());
    edit.clear();
    QTest::keyClicks(&edit, value.c_str());
  }

  // The fields that are seen, in the order of the Tab key, as "name=text|name=text".
  static std::string Shown(const QDialog& dialog) {
    std::string shown;
    const auto* first = dialog.findChild<QWidget*>("cboTransport");
    const QWidget* widget = first;
    do {
      const auto* combo = dynamic_cast<const QComboBox*>(widget);
      const auto* edit = dynamic_cast<const QLineEdit*>(widget);
      const QString text = combo ? combo->currentText().section(" - ", 0, 0) : edit ? edit->text() : QString();
      const bool isField = (combo || edit) && widget->objectName().startsWith(combo ? "cbo" : "txt");
      if (isField && widget->isVisibleTo(&dialog)) {
        shown += (shown.empty() ? "" : "|") + (widget->objectName() + "=" + text).toStdString();
      }
      widget = widget->nextInFocusChain();
    } while (widget != first);
    return shown;
  }

  [[nodiscard]] LinkSettings Saved() const { return LoadSettings(folder.Path(), {}).settings; }
};

TEST_F(LinkDialogsTest, EachKindOfLinkShowsItsFieldsAndKeepsThemInTheSession) {
  const std::pair<const char*, const char*> rows[] = {
      {"cboTransport=Simulated controller|cboModel=K450-45|txtUnit=1|txtSerialNumber=|txtTimeOut=50|txtTries=10",
       "Simulated K450-45"},
      {"cboTransport=Ethernet, to the "
       "controller|txtHost=10.0.0.7|txtTcpPort=65535|txtUnit=255|txtSerialNumber=4294967295|txtTimeOut=300000|"
       "txtTries=1",
       "10.0.0.7:65535, unit 255"},
      {"cboTransport=Ethernet, the controller dials "
       "in|txtTcpPort=1|txtUnit=0|txtSerialNumber=0|txtTimeOut=700|txtTries=2",
       "port 1 (listening), unit 0"},
      {"cboTransport=Serial "
       "line|cboPort=/dev/ttyUSB0|cboBaudRate=300|cboFraming=7E2|txtUnit=2|txtSerialNumber=|txtTimeOut=800|"
       "txtTries=3",
       "/dev/ttyUSB0, 300 7E2, unit 2"},
      {"cboTransport=Modem|cboPort=COM12|cboBaudRate=9600|cboFraming=8N1|txtModemNumber=0,12345|cboDialling=Pulse|"
       "txtDialTimeOut=300|txtRedials=0|txtModemInit=AT&F|txtUnit=3|txtSerialNumber=7|txtTimeOut=900|txtTries=4",
       "COM12, 9600 8N1, modem 0,12345, unit 3"},
  };
  for (const auto& [entries, description] : rows) {
    SCOPED_TRACE(description);
    InSettings([&](QDialog& dialog) {
      EXPECT_EQ(Find<QLabel>(dialog, "lblCaller").text(), "Telepanel");
      for (const QString& entry : QString(entries).split('|')) {
        Enter(dialog, entry.section('=', 0, 0).toStdString(), entry.section('=', 1).toStdString());
      }
      Find<QCheckBox>(dialog, "chkReconnect").setChecked(false);
      EXPECT_EQ(Shown(dialog), entries);
      Press(dialog, "cmdOk");
    });
    EXPECT_EQ(driver.LinkDescription(), description);
    EXPECT_EQ(Saved(), driver.Settings());
    InSettings([&](QDialog& dialog) {
      EXPECT_EQ(Shown(dialog), entries);
      Press(dialog, "cmdOk");
    });
  }
  EXPECT_EQ(Saved().modem, (ModemSettings{"AT&F", "0,12345", true, 300s, 0}));
  EXPECT_FALSE(Saved().reconnects);
}

TEST_F(LinkDialogsTest, APortThatIsGoneStaysAndIsFoundAgain) {
  LinkSettings settings;
  settings.transport = Transport::Serial;
  settings.serialPort = "/dev/ttyUSB7";
  ports[1].stablePath = "/dev/serial/by-id/usb-0";
  driver.UseSettings(settings, true);
  InSettings([this](QDialog& dialog) {
    auto& combo = Find<QComboBox>(dialog, "cboPort");
    const auto items = [&] {
      std::vector<std::string> texts;
      for (int i = 0; i < combo.count(); ++i) texts.push_back(combo.itemText(i).toStdString());
      return texts;
    };
    EXPECT_THAT(items(), ElementsAre("/dev/ttyS0 - 16550A", "/dev/ttyUSB0 - USB-Serial Controller (Prolific)",
                                     "/dev/ttyUSB7 - not present"));
    EXPECT_EQ(combo.itemData(1, Qt::ToolTipRole).toString(), "/dev/serial/by-id/usb-0");
    EXPECT_EQ(combo.currentText(), "/dev/ttyUSB7");
    EXPECT_EQ(Find<QLabel>(dialog, "lblPortInfo").text(), "not present");
    combo.setEditText(QString::fromStdString(folder.Path().string()));
    EXPECT_EQ(Find<QLabel>(dialog, "lblPortInfo").text(), "there, but not in the list of ports");
    combo.setEditText("/dev/ttyUSB7");
    Find<QComboBox>(dialog, "cboBaudRate").setFocus();
    QTest::keyClick(&dialog, Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(combo.hasFocus() || combo.lineEdit()->hasFocus());
    combo.lineEdit()->selectAll();
    QTest::keyClicks(combo.lineEdit(), "/dev/ttyUSB");
    EXPECT_EQ(combo.currentText(), "/dev/ttyUSB") << "no other port takes the place of what is typed";
    combo.setEditText("/dev/ttyUSB7");
    ports.push_back({"ttyUSB7", "/dev/ttyUSB7", "Plugged in again", ""});
    QTest::keyClick(&dialog, Qt::Key_F5);
    EXPECT_TRUE(WaitUntil([&] { return Find<QLabel>(dialog, "lblPortInfo").text() == "Plugged in again"; }));
    EXPECT_EQ(combo.count(), 3);
    Press(dialog, "cmdOk");
  });
  EXPECT_EQ(driver.Settings(), settings);
}

TEST_F(LinkDialogsTest, TheModemDialogLeavesTheKindOfLink) {
  WhenOpen<QDialog>(context, [](QDialog& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Modem settings");
    EXPECT_FALSE(Find<QPushButton>(dialog, "cmdOk").isEnabled());  // no number, no port
    Enter(dialog, "cboPort", "/dev/ttyS0");
    Enter(dialog, "txtModemNumber", "0W 555-1234");
    Press(dialog, "cmdOk");
  });
  driver.ShowModemSettings();
  EXPECT_EQ(Saved().transport, Transport::Simulated);
  EXPECT_EQ(Saved().serialPort, "/dev/ttyS0");
  EXPECT_EQ(Saved().modem.number, "0W 555-1234");
}

}  // namespace
}  // namespace kv
