#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>

#include "tests/driver_ui/DialogFixture.h"

namespace kv {
namespace {

using namespace kv::test;

class TestConnectionTest : public ::testing::Test, protected DialogFixture {
 protected:
  static QString Result(const QDialog& dialog) { return Find<QLabel>(dialog, "lblResult").text(); }
};

TEST_F(TestConnectionTest, ShowsWhoAnswersAndForgetsItWithTheNextChange) {
  const LinkSettings before = driver.Settings();
  InSettings([](QDialog& dialog) {
    Find<QComboBox>(dialog, "cboModel").setCurrentIndex(1);
    Press(dialog, "cmdTest");
    EXPECT_TRUE(Result(dialog).startsWith("Connected to K450-45, O/S 1.10, build 19, serial number "))
        << Result(dialog).toStdString();
    Find<QComboBox>(dialog, "cboModel").setCurrentIndex(0);
    EXPECT_EQ(Result(dialog), "");
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  EXPECT_EQ(driver.Settings(), before);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "KvCmDrv1.ini"));
}

TEST_F(TestConnectionTest, SaysWhyNobodyAnswers) {
  LinkSettings settings;
  settings.transport = Transport::Serial;
  settings.serialPort = "/dev/ttyUSB7";
  driver.UseSettings(settings, false);
  InSettings([](QDialog& dialog) {
    const int height = dialog.height();
    Press(dialog, "cmdTest");
    EXPECT_TRUE(Result(dialog).startsWith("Opening the link on /dev/ttyUSB7, 115200 8N1 failed: "))
        << Result(dialog).toStdString();
    EXPECT_TRUE(WaitUntil([&] { return dialog.height() > height; })) << "the whole text is seen";
    const auto& label = Find<QLabel>(dialog, "lblResult");
    EXPECT_GE(label.height(), label.heightForWidth(label.width()));
    dialog.reject();
  });
}

}  // namespace
}  // namespace kv
