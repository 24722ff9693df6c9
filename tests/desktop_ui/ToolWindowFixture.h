#pragma once

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <memory>
#include <string>
#include <vector>

#include "KvCmDrv1/Driver.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "desktop/PacerWallClock.h"
#include "link/PromptedPassword.h"
#include "simulator/SimulatedController.h"
#include "tests/desktop_ui/UsableWindow.h"
#include "tests/support/SessionFixture.h"

namespace kv::test {

// The window of a tool that works with a simulated controller, which can be replaced by another one.
template <typename Window, typename User>
class ToolWindowFixture : public ::testing::Test {
 protected:
  ToolWindowFixture() {
    fixture.shared.ComDriver = &driver;
    driver.SetPasswordSource(&password);
  }

  struct Plc {
    const char* model = "AurexQ50";
    bool isInBoot = false;
    int baud = 0;
    std::vector<std::string> faults = {};
    const char* password = "";
    const char* os = "";
  };
  // Takes the place of the controller before; its memory differs.
  void PlugIn(const Plc& plc) {
    driver.CloseDriver();
    sim::SimulatorOptions options;
    options.model = plc.model;
    options.boot = plc.isInBoot;
    options.baud = plc.baud;
    options.faults = plc.faults;
    options.password = plc.password;
    options.osVersion = plc.os;
    options.memorySeed = ++plugged;
    controller = sim::SimulatedController::Create(options).value();
    UseLine();
  }
  void PlugOut() {
    driver.CloseDriver();
    controller.reset();
    ++plugged;
    UseLine();
  }
  void Show(std::unique_ptr<Window> shown) {
    window = std::move(shown);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get(), kPatience));
  }

  [[nodiscard]] std::string Text(const char* label) const { return Find<QLabel>(*window, label).text().toStdString(); }
  [[nodiscard]] std::string Information() const {
    return Find<QPlainTextEdit>(*window, "txtInformation").toPlainText().toStdString();
  }
  // Of these commands or buttons, those that are enabled, without the first letters of their names.
  template <typename Command>
  [[nodiscard]] std::string Enabled(std::initializer_list<const char*> names) const {
    std::string enabled;
    for (const char* name : names) {
      if (Find<Command>(*window, name).isEnabled()) enabled += std::string(" ") + (name + 3);
    }
    return enabled;
  }
  [[nodiscard]] static std::string Pointer() {
    const QCursor* pointer = QApplication::overrideCursor();
    return pointer && pointer->shape() == Qt::WaitCursor ? "hourglass" : "arrow";
  }

  SessionFixture fixture;
  User prompts{fixture.log};
  QtPacer pacer;
  PacerWallClock clock;
  bool isSerial = false;      // with a speed that both ends must agree on
  std::uint32_t plugged = 0;  // controllers so far
  std::unique_ptr<sim::SimulatedController> controller;
  PromptedPassword password{prompts, "enter it"};
  Driver driver{pacer, [this](const std::string&) { return controller ? controller->NewLine() : nullptr; },
                [this](const LinkSettings& link, Pacer&, ListeningSocket*) -> std::unique_ptr<Port> {
                  auto port = std::make_unique<SimulatedPort>(controller->NewLine(), "", pacer);
                  EXPECT_TRUE(port->SetBaudRate(link.baudRate));
                  return port;
                }};
  std::unique_ptr<Window> window;

 private:
  void UseLine() {
    LinkSettings settings;
    settings.transport = isSerial ? Transport::Serial : Transport::Simulated;
    settings.serialPort = "COM" + std::to_string(plugged);
    settings.model = "a line of its own " + std::to_string(plugged);  // the driver keeps one for each
    driver.UseSettings(settings, false);
  }
};

}  // namespace kv::test
