#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "KvCmDrv1/SettingsFile.h"
#include "tests/driver_ui/DialogBench.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using namespace kv::test;
using ::testing::ElementsAre;

class LinkDialogsTest : public ::testing::Test, protected DialogBench {
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

  // The names of the fields that are seen, in the order of the Tab key.
  static std::vector<std::string> Shown(const QDialog& dialog) {
    std::vector<std::string> names;
    const auto* first = dialog.findChild<QWidget*>("cboTransport");
    const QWidget* widget = first;
    do {
      const QString name = widget->objectName();
      const bool isField =
          name.startsWith("txt") || name.startsWith("cbo") || name.startsWith("chk") || name.startsWith("cmd");
      if (isField && widget->isVisibleTo(&dialog)) names.push_back(name.toStdString());
      widget = widget->nextInFocusChain();
    } while (widget != first);
    return names;
  }

  [[nodiscard]] LinkSettings Saved() const { return LoadSettings(folder.Path(), {}).settings; }
};

TEST_F(LinkDialogsTest, EachKindOfLinkShowsItsFieldsAndKeepsThemInTheSession) {
  const struct {
    const char* kind;
    std::vector<std::pair<std::string, std::string>> entries;
    const char* description;
  } rows[] = {
      {"Simulated",
       {{"cboModel", "K450-45"}, {"txtUnit", "1"}, {"txtTimeOut", "50"}, {"txtTries", "10"}},
       "Simulated K450-45"},
      {"Ethernet, to",
       {{"txtHost", "10.0.0.7"},
        {"txtTcpPort", "65535"},
        {"txtUnit", "255"},
        {"txtTimeOut", "300000"},
        {"txtTries", "1"}},
       "10.0.0.7:65535, unit 255"},
      {"Ethernet, the",
       {{"txtTcpPort", "1"}, {"txtUnit", "0"}, {"txtTimeOut", "700"}, {"txtTries", "2"}},
       "port 1 (listening), unit 0"},
      {"Serial",
       {{"cboPort", "/dev/ttyUSB0"},
        {"cboBaudRate", "300"},
        {"cboFraming", "7E2"},
        {"txtUnit", "2"},
        {"txtTimeOut", "800"},
        {"txtTries", "3"}},
       "/dev/ttyUSB0, 300 7E2, unit 2"},
      {"Modem",
       {{"cboPort", "COM12"},
        {"cboBaudRate", "9600"},
        {"cboFraming", "8N1"},
        {"txtModemNumber", "0,12345"},
        {"cboDialling", "Pulse"},
        {"txtDialTimeOut", "300"},
        {"txtModemInit", "AT&F"},
        {"txtUnit", "3"},
        {"txtTimeOut", "900"},
        {"txtTries", "4"}},
       "COM12, 9600 8N1, modem 0,12345, unit 3"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.kind);
    InSettings([&](QDialog& dialog) {
      EXPECT_EQ(Find<QLabel>(dialog, "lblCaller").text(), "Telepanel");
      Enter(dialog, "cboTransport", row.kind);
      std::vector<std::string> fields = {"cboTransport"};
      for (const auto& [name, value] : row.entries) {
        Enter(dialog, name, value);
        fields.push_back(name);
        if (name == "cboPort") fields.emplace_back("cmdRefresh");
      }
      auto& reconnect = Find<QCheckBox>(dialog, "chkReconnect");
      if (reconnect.isVisible()) fields.emplace_back("chkReconnect");
      reconnect.setChecked(false);
      fields.insert(fields.end(), {"cmdTest", "cmdTrace", "cmdOk", "cmdCancel"});
      std::vector<std::string> shown = Shown(dialog);
      std::erase(shown, "cmdRefresh");  // a tool button: no stop of the Tab key on every desktop
      std::erase(fields, "cmdRefresh");
      EXPECT_EQ(shown, fields);
      Press(dialog, "cmdOk");
    });
    EXPECT_EQ(driver.LinkDescription(), row.description);
    EXPECT_EQ(Saved(), driver.Settings());
    EXPECT_FALSE(Saved().reconnects);
    InSettings([&](QDialog& dialog) {  // and shows them again
      for (const auto& [name, value] : row.entries) {
        const auto* combo = dialog.findChild<QComboBox*>(name.c_str());
        const QString text = combo ? combo->currentText() : Find<QLineEdit>(dialog, name.c_str()).text();
        EXPECT_TRUE(text.startsWith(value.c_str())) << name << ": " << text.toStdString();
      }
      Press(dialog, "cmdOk");
    });
    EXPECT_EQ(driver.LinkDescription(), row.description);
  }
  EXPECT_EQ(Saved().modem, (ModemSettings{"AT&F", "0,12345", true, 300s}));
}

TEST_F(LinkDialogsTest, CancelChangesNothing) {
  const LinkSettings before = driver.Settings();
  InSettings([](QDialog& dialog) {
    Enter(dialog, "cboTransport", "Serial");
    Enter(dialog, "txtUnit", "77");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  EXPECT_EQ(driver.Settings(), before);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "KvCmDrv1.ini"));
}

TEST_F(LinkDialogsTest, ABadValueIsSaidWhileItIsTypedAndCannotBeKept) {
  InSettings([](QDialog& dialog) {
    Enter(dialog, "cboTransport", "Ethernet, to");
    Enter(dialog, "txtTcpPort", "65536");
    EXPECT_EQ(Find<QLabel>(dialog, "lblFault").text(), "TCP port: a number from 1 to 65535");
    EXPECT_EQ(Find<QLineEdit>(dialog, "txtTcpPort").accessibleDescription(), "TCP port: a number from 1 to 65535");
    EXPECT_FALSE(Find<QPushButton>(dialog, "cmdOk").isEnabled());
    EXPECT_TRUE(Find<QPushButton>(dialog, "cmdTest").toolTip().endsWith("\nTCP port: a number from 1 to 65535"));
    QTest::keyClick(&Find<QLineEdit>(dialog, "txtTcpPort"), Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    QTest::keyClick(&Find<QLineEdit>(dialog, "txtTcpPort"), Qt::Key_Backspace);
    EXPECT_FALSE(Find<QLabel>(dialog, "lblFault").isVisible());
    QTest::keyClick(&Find<QLineEdit>(dialog, "txtTcpPort"), Qt::Key_Return);
  });
  EXPECT_EQ(driver.LinkDescription(), "127.0.0.1:6553, unit 1");
}

TEST_F(LinkDialogsTest, APortThatIsGoneStaysAndIsFoundAgain) {
  LinkSettings settings;
  settings.transport = Transport::Serial;
  settings.serialPort = "/dev/ttyUSB7";
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
    EXPECT_EQ(combo.currentText(), "/dev/ttyUSB7");
    EXPECT_EQ(Find<QLabel>(dialog, "lblPortInfo").text(), "not present");
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

TEST_F(LinkDialogsTest, EveryControlHasANameForScreenReadersAndATooltip) {
  InSettings([](QDialog& dialog) {
    for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
      const QString name = widget->objectName();
      if (!name.startsWith("txt") && !name.startsWith("cbo") && !name.startsWith("cmd")) continue;
      const auto* button = dynamic_cast<const QAbstractButton*>(widget);
      EXPECT_FALSE(widget->accessibleName().isEmpty() && (!button || button->text().isEmpty())) << name.toStdString();
      EXPECT_FALSE(widget->toolTip().isEmpty()) << name.toStdString();
    }
    dialog.reject();
  });
}

}  // namespace
}  // namespace kv
