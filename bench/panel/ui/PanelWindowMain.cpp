// PanelWindowBench [--once]: the panel as its user has it, in the main window of the whole program, without a screen;
// the controller, a K670, is a process of its own. From the button of the mouse that goes down to the page that is
// shown, also while another page is still coming; what the window costs while nothing happens; and how long it is deaf.

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KvTele2/ui/PanelView.h"
#include "base/PathText.h"
#include "bench/exchange/KvsimChild.h"
#include "bench/exchange/Measure.h"
#include "bench/panel/Figures.h"
#include "tests/host_ui/ProgramRun.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/screenshots/NextDialog.h"

namespace bench {
namespace {

constexpr int kPatience = 10'000;  // milliseconds

struct Effort {
  int rounds;
  int settle;  // milliseconds
  int idle;    // that the load is measured for
};
constexpr Effort kFull{20, 6000, 20'000};
constexpr Effort kOnce{1, 500, 500};

constexpr double kMostIdleShare = 0.02;  // of a processor core
constexpr double kMostDeafSeconds = 0.050;

// How the controller is reached, and what is wanted there in seconds. 9600 baud have a twelfth of the bytes of 115200.
struct Way {
  const char* name;
  int baud;  // 0: TCP
  double mostPage;
  double mostPress;  // of a press during a page change, until its own page is shown
};
constexpr Way kWays[] = {
    {"TCP", 0, 0.100, 0.080}, {"115200 baud", 115200, 0.100, 0.080}, {"9600 baud", 9600, 1.2, 1.2}};

// The longest span without a turn of the event loop.
class Heart {
 public:
  Heart() {
    mTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&mTimer, &QTimer::timeout, [this] { Beat(); });
    mTimer.start(2);
  }
  [[nodiscard]] double TakeLongest() {
    Beat();
    return std::exchange(mLongest, 0);
  }

 private:
  void Beat() {
    const double now = ClockSeconds();
    mLongest = std::max(mLongest, now - std::exchange(mLast, now));
  }
  QTimer mTimer;
  double mLast = ClockSeconds();
  double mLongest = 0;
};

class User {
 public:
  explicit User(QMainWindow& window) : mWindow(window), mView(*window.findChild<kv::PanelView*>("panPanel")) {}

  [[nodiscard]] bool Operate() {
    Trigger("ID_OnLine");
    if (!WaitFor([this] { return IsShown("Overview"); })) return false;
    kv::test::WithNextDialog(mWindow, [](QDialog& box) { box.findChild<QPushButton*>("cmdYes")->click(); });
    Trigger("HOST_Operate");
    if (!WaitFor([this] { return Text("lblPanelMode") == "Operate"; })) return false;
    mWindow.activateWindow();
    mView.setFocus();
    QTest::qWait(1000);  // fonts and images come where the link is quick
    return true;
  }
  void Leave() { Trigger("HOST_ViewOnly"); }

  // On a slow line its tabs are the last of a page to come.
  void Press(const char* tab) {
    const auto& texts = mView.Texts();
    const auto find = [&] {
      return std::ranges::find_if(texts, [&](const auto& one) { return one.touch && one.text == tab; });
    };
    if (!WaitFor([&] { return find() != texts.end(); })) return;
    const auto found = find();
    QTest::mouseClick(&mView, Qt::LeftButton, {}, mView.PlaceOf(found->place).center());
  }
  // What passes until that page is shown; nothing: it never was.
  [[nodiscard]] std::optional<double> Until(const char* page) {
    const double start = ClockSeconds();
    if (!WaitFor([this, page] { return IsShown(page); })) return std::nullopt;
    return ClockSeconds() - start;
  }
  [[nodiscard]] std::string Note() const { return Text("lblMessage") + " " + Text("lblPanelNote"); }

 private:
  void Trigger(const char* id) { mWindow.findChild<QAction*>(id)->trigger(); }
  [[nodiscard]] std::string Text(const char* label) const {
    return mWindow.findChild<QLabel*>(label)->text().toStdString();
  }
  [[nodiscard]] bool IsShown(const std::string& page) const { return Text("lblPanelPage").ends_with(", " + page); }
  [[nodiscard]] static bool WaitFor(const std::function<bool()>& condition) {
    const double end = ClockSeconds() + kPatience / 1e3;
    while (!condition() && ClockSeconds() < end) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    return condition();
  }

  QMainWindow& mWindow;
  kv::PanelView& mView;
};

struct Measured {
  std::vector<double> pages, presses, deaf;
  double idleCore = 0;
};

// Nothing: it did not work, which stderr tells.
std::optional<Measured> Use(QMainWindow& window, const Effort& effort) {
  constexpr int kWhileItComes = 10;  // milliseconds
  constexpr int kBetween = 500;
  User user(window);
  const auto failed = [&user](const char* what) {
    std::fprintf(stderr, "%s did not work: %s\n", what, user.Note().c_str());
    return std::nullopt;
  };
  if (!user.Operate()) return failed("To operate");
  Measured measured;
  Heart heart;
  for (int round = 0; round < effort.rounds; ++round) {
    (void)heart.TakeLongest();
    user.Press("Info");
    const auto page = user.Until("Info");
    if (!page) return failed("The page \"Info\"");
    QTest::qWait(kBetween);
    user.Press("Alarms");
    QTest::qWait(kWhileItComes);
    user.Press("Overview");
    const auto press = user.Until("Overview");
    if (!press) return failed("The press during a page change");
    QTest::qWait(kBetween);
    measured.pages.push_back(*page);
    measured.presses.push_back(*press);
    measured.deaf.push_back(heart.TakeLongest());
  }
  user.Leave();
  QTest::qWait(effort.settle);
  const double cpu = CpuSecondsOf(0);
  const double start = ClockSeconds();
  QTest::qWait(effort.idle);
  measured.idleCore = (CpuSecondsOf(0) - cpu) / (ClockSeconds() - start);
  return measured;
}

std::optional<Measured> RunWay(const Way& way, const Effort& effort) {
  const kv::TemporaryFolder home;
  const std::string line = kv::Utf8FromPath(home.Path() / "line");
  const bool isTcp = way.baud == 0;
  const KvsimChild kvsim(
      isTcp ? std::vector<std::string>{"--model", "K670", "--tcp", "0"}
            : std::vector<std::string>{"--model", "K670", "--baud", std::to_string(way.baud), "--pty", line});
  const std::string& ready = kvsim.ReadyLine();
  std::filesystem::create_directories(home.Path() / "Sessions/Default");
  home.Put("Sessions/Default/KvCmDrv1.ini",
           "[KvCmDrv1]\r\n" +
               (isTcp ? "Transport=tcp\r\nHost=127.0.0.1\r\nTcpPort=" + ready.substr(ready.rfind(':') + 1)
                      : "Transport=serial\r\nSerialPort=" + line + "\r\nBaudRate=" + std::to_string(way.baud)) +
               "\r\n");
  std::optional<Measured> measured;
  kv::test::RunProgram(home.Path(), [&](QMainWindow& window) { measured = Use(window, effort); });
  return measured;
}

int Run(const Effort& effort, bool isJudged) {
  bool isGood = true;
  for (const Way& way : kWays) {
    const auto measured = RunWay(way, effort);
    if (!measured) return 1;
    isGood &= Tell(way.name, "touch to the page seen, ms", FigureOf(measured->pages), 1e3, way.mostPage);
    isGood &= Tell(way.name, "press during a page change, ms", FigureOf(measured->presses), 1e3, way.mostPress);
    isGood &= Tell(way.name, "window deaf, ms", FigureOf(measured->deaf), 1e3, kMostDeafSeconds);
    isGood &=
        Tell(way.name, "standing still, % of a core", {measured->idleCore, measured->idleCore}, 100, kMostIdleShare);
  }
  return isGood || !isJudged ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const bool isOnce = argc > 1 && std::strcmp(argv[1], "--once") == 0;
  return bench::Run(isOnce ? bench::kOnce : bench::kFull, !isOnce);
}
