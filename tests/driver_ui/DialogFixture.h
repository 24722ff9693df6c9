#pragma once

#include <QPushButton>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ui/QtDriverDialogs.h"
#include "apps/support/SimulatedControllers.h"
#include "base/PathText.h"
#include "desktop/MemoryClipboard.h"
#include "desktop/ScriptedPrompts.h"
#include "tests/desktop_ui/QtFixture.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// The driver with its windows, a session's folder, and simulated controllers to talk to.
struct DialogFixture {
  DialogFixture() {
    dialogs.Serve(driver);
    driver.ConfigureForSession({.folder = Utf8FromPath(folder.Path())});
    driver.ComParamsCaller("Telepanel");
  }

  // Shows the settings dialog; `user` works in it as soon as it is open, and has to close it.
  void InSettings(const std::function<void(QDialog&)>& user) {
    WhenOpen<QDialog>(context, [user](QDialog& dialog) {
      EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog, kPatience));
      user(dialog);
    });
    driver.ShowComParams();
  }
  static void Press(const QDialog& dialog, const char* button) { Find<QPushButton>(dialog, button).click(); }

  TemporaryFolder folder;
  QtPacer pacer;
  ScriptedPrompts prompts{[](const std::string& what) { ADD_FAILURE() << what; }};
  MemoryClipboard clipboard;
  std::vector<SerialPortInfo> ports = {{"ttyS0", "/dev/ttyS0", "16550A", ""},
                                       {"ttyUSB0", "/dev/ttyUSB0", "USB-Serial Controller (Prolific)", ""}};
  SimulatedControllers controllers{std::filesystem::path()};
  QtDriverDialogs dialogs{{.pacer = pacer,
                           .prompts = prompts,
                           .clipboard = clipboard,
                           .choices = {{"K220-22-R1", "K450-45"}, [this] { return ports; }},
                           .windowsFile = folder.Path() / "Windows.ini"}};
  PortMaker makePort = MakePort;
  Driver driver{pacer, [this](const std::string& model) { return std::move(*controllers.NewLine(model)); },
                [this](const LinkSettings& settings, Pacer& p, ListeningSocket* socket) {
                  return makePort(settings, p, socket);
                }};
  QObject context;
};

}  // namespace kv::test
