#include "desktop/console/StopSignal.h"

#include <atomic>

#ifdef _WIN32
#include <windows.h>
#else
#include <csignal>

#include <unistd.h>
#endif

namespace kv {

namespace {

constexpr int kInterrupted = 130;  // 128 + the number of the interrupt signal, as shells report it

std::atomic<bool> raised = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal handler may touch nothing else

}  // namespace

#ifdef _WIN32

namespace {

BOOL WINAPI OnControl(DWORD event) {
  if (raised.exchange(true)) TerminateProcess(GetCurrentProcess(), kInterrupted);
  // After the window was closed the process ends with this call: the work gets the time that the system leaves it.
  const bool isLast = event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT;
  if (isLast) WaitForSingleObject(GetCurrentProcess(), INFINITE);
  return TRUE;
}

}  // namespace

struct StopSignal::Previous {};

StopSignal::StopSignal() {
  SetConsoleCtrlHandler(OnControl, TRUE);
}
StopSignal::~StopSignal() {
  SetConsoleCtrlHandler(OnControl, FALSE);
  Clear();
}

#else

namespace {

extern "C" void OnSignal(int) {
  if (raised.exchange(true)) _exit(kInterrupted);
}

}  // namespace

struct StopSignal::Previous {
  struct sigaction interrupt;
  struct sigaction terminate;
  struct sigaction hangUp;
};

StopSignal::StopSignal() : mPrevious(std::make_unique<Previous>()) {
  struct sigaction action{};
  action.sa_handler = OnSignal;  // calls are not restarted: Ctrl-C at a question ends the wait for its answer
  sigaction(SIGINT, &action, &mPrevious->interrupt);
  sigaction(SIGTERM, &action, &mPrevious->terminate);
  sigaction(SIGHUP, nullptr, &mPrevious->hangUp);
  if (mPrevious->hangUp.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
}

StopSignal::~StopSignal() {
  sigaction(SIGINT, &mPrevious->interrupt, nullptr);
  sigaction(SIGTERM, &mPrevious->terminate, nullptr);
  sigaction(SIGHUP, &mPrevious->hangUp, nullptr);
  Clear();
}

#endif

bool StopSignal::Raised() {
  return raised;
}
void StopSignal::Clear() {
  raised = false;
}

}  // namespace kv
