#pragma once

#include <QKeyEvent>
#include <QTimer>
#include <chrono>
#include <functional>
#include <utility>

namespace kv {

// A key of the keyboard, from the moment in which a finger goes down on it until it goes up.
//
// A key that is kept down repeats itself, and some desktops tell that as let go and pressed anew in the same moment.
// Where the two arrive apart the toolkit does not know them for a repetition: so a key counts as let go only when no
// press of that moment has followed it for a while, and such a press begins nothing, not even when the hold has ended
// otherwise.
class HeldKey {
 public:
  explicit HeldKey(std::function<void()> onLetGo) : mOnLetGo(std::move(onLetGo)) {
    mWait.setSingleShot(true);
    QObject::connect(&mWait, &QTimer::timeout, [this] { LetGo(); });
  }

  // Whether this press is one of a finger; false: the key only repeats itself.
  [[nodiscard]] bool Begins(const QKeyEvent& event) {
    const bool isOfThatMoment = event.timestamp() != 0 && event.timestamp() == mReleasedAt;
    if (event.isAutoRepeat() || (event.key() == mReleased && isOfThatMoment)) {
      if (event.key() == mKey) mWait.stop();
      return false;
    }
    if (mWait.isActive()) LetGo();
    mKey = event.key();
    return true;
  }
  void Release(const QKeyEvent& event) {
    mReleased = event.key();
    mReleasedAt = event.timestamp();
    if (event.isAutoRepeat() || event.key() != mKey) return;
    mReleasedAt == 0 ? LetGo() : mWait.start(kUntilRepeat);
  }
  // The hold has ended otherwise.
  void Forget() {
    mWait.stop();
    mKey = 0;
  }

 private:
  static constexpr std::chrono::milliseconds kUntilRepeat{30};  // on a busy machine

  void LetGo() {
    Forget();
    mOnLetGo();
  }

  std::function<void()> mOnLetGo;
  QTimer mWait;
  int mKey = 0;  // that is down
  int mReleased = 0;
  quint64 mReleasedAt = 0;  // by the desktop's clock; 0: it did not say
};

}  // namespace kv
