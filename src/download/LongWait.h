#pragma once

#include <string>

#include "base/Time.h"
#include "download/DownloadWork.h"

namespace kv {

// A wait that only the controller can end. When it has become long, the user is told once what is waited for and what a
// stop would leave.
class LongWait {
 public:
  // `what`: "that its flash is at rest".
  LongWait(DownloadWork& work, std::string what);
  // Called between two questions to the controller.
  void Polled();

 private:
  DownloadWork& mWork;
  std::string mWhat;
  Instant mStart;
  bool mIsTold = false;
};

}  // namespace kv
