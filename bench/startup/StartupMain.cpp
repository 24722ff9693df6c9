// StartupBench [--once]: how long it takes from the start of a process to a window that can be used, for Telepanel and
// for a bare window of the same build. Wanted: at most twice the bare window's time.

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMainWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "base/PathText.h"
#include "tests/host_ui/ProgramRun.h"

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kRuns = 15;
constexpr int kLongest = 20'000;  // milliseconds

// Painted, and nothing is waiting to be done.
void TellWhenUsable(const QMainWindow& window) {
  while (!window.windowHandle()->isExposed()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  QCoreApplication::processEvents();
  std::puts("usable");
  std::fflush(stdout);
}

int RunBare() {
  QMainWindow window;
  window.setCentralWidget(new QLabel("A window"));
  window.resize(960, 640);
  window.show();
  QTimer::singleShot(0, &window, [&window] {
    TellWhenUsable(window);
    QCoreApplication::quit();
  });
  return QApplication::exec();
}

int RunTelepanel(const char* home) {
  QApplication::setQuitOnLastWindowClosed(false);
  kv::test::RunProgram(kv::PathFromUtf8(home), [](const QMainWindow& window) { TellWhenUsable(window); });
  return 0;
}

std::optional<Milliseconds> Measure(const QString& program, const QStringList& arguments) {
  const auto start = std::chrono::steady_clock::now();
  QProcess process;
  process.start(program, arguments);
  const bool isUsable = process.waitForReadyRead(kLongest) && process.readLine().trimmed() == "usable";
  const Milliseconds time = std::chrono::steady_clock::now() - start;
  if (!process.waitForFinished(kLongest) || !isUsable) return std::nullopt;
  return time;
}

double Median(std::vector<double> times) {
  std::ranges::sort(times);
  return times[times.size() / 2];
}

int Compare(const QString& program, int runs) {
  const QTemporaryDir home;
  if (!QDir(home.path()).mkpath("Sessions/Default")) return 1;
  std::vector<double> bare;
  std::vector<double> telepanel;
  for (int run = 0; run < runs; ++run) {
    const auto first = Measure(program, {"--bare"});
    const auto second = Measure(program, {"--telepanel", home.path()});
    if (!first || !second) {
      std::fputs("A window did not become usable.\n", stderr);
      return 1;
    }
    bare.push_back(first->count());
    telepanel.push_back(second->count());
  }
  std::printf("bare window %.1f ms, Telepanel %.1f ms: %.2f times (wanted: at most 2)\n", Median(bare),
              Median(telepanel), Median(telepanel) / Median(bare));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--telepanel") == 0) {
    const QApplication application(argc, argv);
    return RunTelepanel(argv[2]);
  }
  if (argc == 2 && std::strcmp(argv[1], "--bare") == 0) {
    const QApplication application(argc, argv);
    return RunBare();
  }
  const QCoreApplication application(argc, argv);
  return Compare(QCoreApplication::applicationFilePath(), argc == 2 && std::strcmp(argv[1], "--once") == 0 ? 1 : kRuns);
}
