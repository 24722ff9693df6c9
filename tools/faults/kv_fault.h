#pragma once

// Comes first in every source file that tools/faults/run has put a fault into. The fault with the number in KV_FAULT is
// the one that happens. Each that is passed is noted in the file that KV_FAULT_SEEN names, once a process.

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

// What a changed expression may well be.
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wnarrowing"
#pragma GCC diagnostic ignored "-Wparentheses"
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wtype-limits"
#pragma GCC diagnostic ignored "-Wunused"
#pragma GCC diagnostic ignored "-Waddress"
#pragma GCC diagnostic ignored "-Wbool-compare"
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#pragma GCC diagnostic ignored "-Wint-in-bool-context"
#pragma GCC diagnostic ignored "-Wtautological-compare"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"

inline void kv_fault_note(int place) {
  static const char* const file = std::getenv("KV_FAULT_SEEN");
  static std::atomic<bool> noted[100000];
  if (file == nullptr || noted[place].exchange(true)) return;
  const int error = errno;
  const int list = ::open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (list >= 0) {
    ::dprintf(list, "%d\n", place);
    ::close(list);
  }
  errno = error;
}

inline bool kv_fault(int place) {
  static const char* const chosen = std::getenv("KV_FAULT");
  static const int number = chosen != nullptr ? std::atoi(chosen) : -1;
  kv_fault_note(place);
  return place == number;
}
