#pragma once

#include <QApplication>
#include <QMainWindow>
#include <QTimer>
#include <filesystem>
#include <functional>

#include "apps/KvTeleExe/TelepanelProgram.h"

namespace kv::test {

inline QMainWindow* ShownMainWindow() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* window = dynamic_cast<QMainWindow*>(widget);
    if (window && window->isVisible()) return window;
  }
  return nullptr;
}

// Runs the whole program in this process, in the program folder `home`: `user` is what the user does once the main
// window is shown. Then the program is left. False: it ended before anybody could use it. `state` is where the journals
// keep their heads; empty: nowhere.
inline bool RunProgram(const std::filesystem::path& home, const std::function<void(QMainWindow& window)>& user,
                       const std::filesystem::path& state = {}) {
  TelepanelProgram program(ProgramPaths(home), state);
  QTimer begin;
  bool hasShown = false;
  QObject::connect(&begin, &QTimer::timeout, [&] {
    QMainWindow* window = ShownMainWindow();
    if (!window) return;  // a box may come before it
    begin.stop();
    hasShown = true;
    user(*window);
    window->close();
  });
  begin.start(1);
  program.Run();
  return hasShown;
}

}  // namespace kv::test
