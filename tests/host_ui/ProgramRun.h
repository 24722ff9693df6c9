#pragma once

#include <QApplication>
#include <QMainWindow>
#include <QTimer>
#include <filesystem>
#include <functional>

#include "apps/KvTeleExe/TelepanelProgram.h"

namespace kv::test {

// Runs the whole program in this process, in the program folder `home`: `user` is what the user does once the main
// window is shown. Then the program is left.
inline void RunProgram(const std::filesystem::path& home, const std::function<void(QMainWindow& window)>& user) {
  TelepanelProgram program(home);
  QTimer begin;
  begin.setSingleShot(true);
  QObject::connect(&begin, &QTimer::timeout, [&user] {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      auto* window = dynamic_cast<QMainWindow*>(widget);
      if (!window || !window->isVisible()) continue;
      user(*window);
      window->close();
      return;
    }
  });
  begin.start(0);
  program.Run();
}

}  // namespace kv::test
