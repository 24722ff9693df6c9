// StartupBench [--once]: how long it takes from the start of a process to a window that can be used, for Telepanel and
// for a bare window of the same build, and to the first line of a process without one. Wanted: at most twice the bare
// window's time.

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
#include <iterator>
#include <optional>
#include <vector>

#include "base/PathText.h"
#include "tests/host_ui/ProgramRun.h"

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int kRuns = 15;
constexpr int kLongest = 20'000;  // milliseconds

void TellUsable() {
  std::puts("usable");
  std::fflush(stdout);
}

// Painted, and nothing is waiting to be done.
void TellWhenUsable(const QMainWindow& window) {
  while (!window.windowHandle()->isExposed()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  QCoreApplication::processEvents();
  TellUsable();
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
  (void)process.waitForReadyRead(kLongest);  // on Windows it fails where the process has ended meanwhile
  const bool isUsable = process.readLine().trimmed() == "usable";
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
  const QStringList starts[] = {{"--nothing"}, {"--bare"}, {"--telepanel", home.path()}};
  std::vector<double> times[std::size(starts)];
  for (int run = 0; run < runs; ++run) {
    for (std::size_t i = 0; i < std::size(starts); ++i) {
      const auto time = Measure(program, starts[i]);
      if (!time) {
        std::fprintf(stderr, "StartupBench %s did not become usable.\n", qPrintable(starts[i].front()));
        return 1;
      }
      times[i].push_back(time->count());
    }
  }
  const double bare = Median(times[1]);
  const double telepanel = Median(times[2]);
  std::printf(
      "no window %.1f ms, bare window %.1f ms, Telepanel %.1f ms: %.2f times the bare one (wanted: at most 2)\n",
      Median(times[0]), bare, telepanel, telepanel / bare);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--nothing") == 0) {
    TellUsable();
    return 0;
  }
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
