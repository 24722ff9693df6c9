#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QObject>
#include <QString>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "desktop/Pacer.h"
#include "tests/support/TemporaryFolder.h"

// What tests of windows share. Windows are real, without a screen (for Windows with one, and the platform's own drawing
// and focus); a test drives them by the names of their controls and waits for conditions.
namespace kv::test {

// Longer than any wait that succeeds.
inline constexpr int kPatience = 10'000;  // milliseconds

class QtEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override {
#ifdef _WIN32
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);  // the choice of a file, which no test could drive
#else
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const auto fonts = mFonts.Put("fonts.conf", "<fontconfig><dir>" KV_TEST_DATA "/support/fonts</dir></fontconfig>");
    qputenv("FONTCONFIG_FILE", fonts.c_str());  // none of the machine's fonts
#endif
    mApplication = std::make_unique<QApplication>(mCount, mArguments);
  }
  void TearDown() override { mApplication.reset(); }

 private:
  int mCount = 1;
  char mName[5] = "test";
  char* mArguments[2] = {mName, nullptr};
  std::unique_ptr<QApplication> mApplication;
  TemporaryFolder mFonts;
};

inline const ::testing::Environment* const kQtEnvironment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

// The control of that name; a missing one fails the test, which cannot go on.
template <typename Control>
Control& Find(const QObject& window, const char* name) {
  auto* control = window.findChild<Control*>(name);
  if (!control) throw std::runtime_error(std::string("there is no ") + name);
  return *control;
}

[[nodiscard]] inline bool WaitUntil(const std::function<bool()>& condition) {
  return QTest::qWaitFor(condition, kPatience);
}

// Runs `action` in the event loop as soon as `condition` holds: what a user does while something waits.
inline void When(QObject& context, std::function<bool()> condition, std::function<void()> action) {
  auto* timer = new QTimer(&context);
  QObject::connect(timer, &QTimer::timeout, &context, [=] {
    if (!condition()) return;
    timer->stop();
    timer->deleteLater();
    action();
  });
  timer->start(1);
}

// Does something to the next dialog of that class that opens, such as pressing a button in it.
template <typename Dialog>
void WhenOpen(QObject& context, std::function<void(Dialog&)> action) {
  const auto open = [] { return dynamic_cast<Dialog*>(QApplication::activeModalWidget()); };
  When(context, [=] { return open() != nullptr; }, [=] { action(*open()); });
}

// The longest span in which the event loop had no turn, while `wait` ran. A machine under load may hold a process up,
// so the best of three counts: a wait that blocks does so in each.
inline Duration LongestGap(Pacer& pacer, const std::function<void()>& wait) {
  Duration best = Duration::max();
  for (int attempt = 0; attempt < 3; ++attempt) {
    Instant last = pacer.Now();
    Duration longest{};
    QTimer heart;
    heart.setTimerType(Qt::PreciseTimer);
    const auto beat = [&] {
      longest = std::max(longest, pacer.Now() - last);
      last = pacer.Now();
    };
    QObject::connect(&heart, &QTimer::timeout, &heart, beat);
    heart.start(2);
    wait();
    beat();
    best = std::min(best, longest);
  }
  return best;
}
#ifdef _WIN32
inline constexpr Duration kLongestAllowedGap = std::chrono::milliseconds(300);  // wine takes its time to draw
#else
inline constexpr Duration kLongestAllowedGap = std::chrono::milliseconds(50);
#endif

}  // namespace kv::test
