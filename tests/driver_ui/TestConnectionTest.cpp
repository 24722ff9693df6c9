#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>

#include "KvCmDrv1/ports/SimulatedPort.h"
#include "tests/driver_ui/DialogFixture.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
using namespace kv::test;

// A controller that hears everything and says nothing.
struct SilentLine final : InProcessLine {
  bool Connect(Instant) override { return true; }
  void Disconnect(Instant) override {}
  bool IsConnected() const override { return true; }
  void Write(std::string_view, Instant) override {}
  std::string Read(Instant) override { return {}; }
  std::optional<Instant> NextEvent() const override { return std::nullopt; }
};

class TestConnectionTest : public ::testing::Test, protected DialogFixture {
 protected:
  void BeSilent() {
    makePort = [](const LinkSettings&, Pacer& p, ListeningSocket*) {
      return std::make_unique<SimulatedPort>(std::make_shared<SilentLine>(), "silence", p);
    };
    LinkSettings settings;
    settings.transport = Transport::Tcp;
    settings.timeOut = 10s;
    driver.UseSettings(settings, false);
  }
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

TEST_F(TestConnectionTest, TheWindowAnswersWhileAControllerIsSilentAndCancelEndsAtOnce) {
  BeSilent();
  InSettings([this](QDialog& dialog) {
    Instant cancelled{};
    const auto test = [&] {
      When(
          dialog, [&] { return dialog.findChild<QPushButton*>("cmdCancelBusy")->isVisible(); },
          [&] {
            cancelled = pacer.Now();
            QTest::keyClick(&dialog, Qt::Key_Escape);
          });
      Press(dialog, "cmdTest");
    };
    EXPECT_LT(LongestGap(pacer, test), kLongestAllowedGap);
    EXPECT_LT(pacer.Now() - cancelled, 200ms);
    EXPECT_TRUE(Result(dialog).contains("stopped")) << Result(dialog).toStdString();
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(pacer.StopRequested());
    dialog.reject();
  });
}

}  // namespace
}  // namespace kv
