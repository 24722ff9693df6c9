#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace bench {

// kvsim in a process of its own, ended with this object.
class KvsimChild {
 public:
  explicit KvsimChild(std::vector<std::string> arguments);
  ~KvsimChild();
  KvsimChild(const KvsimChild&) = delete;
  KvsimChild& operator=(const KvsimChild&) = delete;

  // The line that it printed when it was ready: empty when it never was.
  [[nodiscard]] const std::string& ReadyLine() const { return mReadyLine; }
  [[nodiscard]] pid_t Process() const { return mProcess; }

 private:
  pid_t mProcess = -1;
  std::string mReadyLine;
};

}  // namespace bench
