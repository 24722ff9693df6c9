#pragma once

#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <memory>
#include <string>
#include <vector>

#include "tests/desktop_ui/QtFixture.h"
#include "tests/host_ui/ProgramRun.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {

// A program folder, and the program run in it with a user.
class WindowFixture : public testing::Test {
 protected:
  WindowFixture() { std::filesystem::create_directories(home.Path() / "Sessions" / "Default"); }

  std::filesystem::path Put(const std::string& file, const std::string& content) const {
    return home.Put("Sessions/Default/" + file, content);
  }
  void PutLink(const std::string& settings) const { Put("KvCmDrv1.ini", "[KvCmDrv1]\r\n" + settings); }
  // The port at which a simulated controller in a process of its own is found.
  int ServedBy(std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--tcp", "0"});
    kvsim = std::make_unique<kvtest::KvsimProcess>(std::move(arguments));
    return kvsim->Port();
  }
  void PutTcp(int port, const std::string& more = "") const {
    PutLink("Transport=tcp\r\nHost=127.0.0.1\r\nTcpPort=" + std::to_string(port) + "\r\n" + more);
  }

  // A failure in the middle of what the user does still leaves the program.
  void Run(const std::function<void(QMainWindow& window)>& user) const {
    const bool wasShown = RunProgram(home.Path(), [&user](QMainWindow& window) {
      try {
        user(window);
      } catch (const std::exception& failure) {
        ADD_FAILURE() << failure.what();
      }
    });
    EXPECT_TRUE(wasShown) << "the program ended before anybody could use it";
  }

  static void Trigger(QMainWindow& window, const char* id) { Find<QAction>(window, id).trigger(); }
  static std::string Text(const QMainWindow& window, const char* label) {
    return Find<QLabel>(window, label).text().toStdString();
  }
  // Presses OK in every message box that opens, and keeps their texts.
  struct Boxes {
    Boxes() { Expect(); }
    std::vector<std::string> texts;

   private:
    void Expect() {
      WhenOpen<QMessageBox>(mContext, [this](QMessageBox& box) {
        texts.push_back(box.text().toStdString());
        Find<QPushButton>(box, "cmdOk").click();
        Expect();
      });
    }
    QObject mContext;  // expects nothing any more once the list has gone
  };

  TemporaryFolder home;
  std::unique_ptr<kvtest::KvsimProcess> kvsim;
};

}  // namespace kv::test
