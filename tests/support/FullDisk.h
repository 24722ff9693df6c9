#pragma once

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace kv::test {

#ifdef _WIN32
class FullDisk {};  // nothing like it here: tests leave it out
#else
// As long as it lives, no file can grow past 20000 bytes: what writing to a full disk looks like.
class FullDisk {
 public:
  FullDisk() {
    getrlimit(RLIMIT_FSIZE, &mBefore);
    const rlimit small{20000, mBefore.rlim_max};
    mHandler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &mBefore);
    std::signal(SIGXFSZ, mHandler);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit mBefore{};
  void (*mHandler)(int) = nullptr;
};
#endif

}  // namespace kv::test
