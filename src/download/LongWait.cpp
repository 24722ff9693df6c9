#include "download/LongWait.h"

#include <chrono>
#include <utility>

namespace kv {

LongWait::LongWait(DownloadWork& work, std::string what)
    : mWork(work), mWhat(std::move(what)), mStart(work.pacer.Now()) {}

void LongWait::Polled() {
  constexpr Duration kLong = std::chrono::minutes(1);
  if (mIsTold || mWork.pacer.Now() - mStart < kLong) return;
  mIsTold = true;
  mWork.window.Note("For a minute now the controller has not said " + mWhat +
                    ". Only it knows how long it needs, so the download goes on waiting until it is stopped. Stopped "
                    "now, this is left: " +
                    std::string(LeftBehindText(mWork.left)));
}

}  // namespace kv
