#pragma once

// clang-format off
#include <winsock2.h>  // before the other, which brings an older one
#include <windows.h>
// clang-format on

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/PathText.h"

#ifndef SIGKILL
inline constexpr int SIGKILL = 9;
inline constexpr int SIGCONT = 18;
inline constexpr int SIGSTOP = 19;
#endif

// tests/support/ProgramProcess.h for Windows.
namespace kvtest {

inline std::wstring Wide(std::string_view text) {
  return kv::PathFromUtf8(text).wstring();
}

// What a program prints. A pipe cannot be read with a time limit, so a thread of its own does.
class PrintedText {
 public:
  PrintedText() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    CreatePipe(&mRead, &mWrite, &inherited, 0);
    SetHandleInformation(mRead, HANDLE_FLAG_INHERIT, 0);
  }
  ~PrintedText() {
    if (mReader.joinable()) mReader.join();
    CloseHandle(mRead);
  }
  PrintedText(const PrintedText&) = delete;
  PrintedText& operator=(const PrintedText&) = delete;

  [[nodiscard]] HANDLE Writer() const { return mWrite; }
  // Once the program has the other end.
  void BeginReading() {
    CloseHandle(mWrite);
    mReader = std::thread([this] { Read(); });
  }
  // Without its end; what there is when nothing more comes.
  std::string TakeLine() {
    std::unique_lock lock(mLock);
    mChange.wait_for(lock, kLongest, [this] { return mHasEnded || mText.contains('\n'); });
    const std::size_t end = std::min(mText.find('\n'), mText.size());
    std::string line = mText.substr(0, end);
    mText.erase(0, end + 1);
    return line;
  }
  // All up to the program's end.
  std::string TakeAll() {
    std::unique_lock lock(mLock);
    mChange.wait_for(lock, kLongest, [this] { return mHasEnded; });
    return std::exchange(mText, {});
  }
  [[nodiscard]] bool HasEnded() {
    const std::lock_guard lock(mLock);
    return mHasEnded;
  }

 private:
  static constexpr std::chrono::seconds kLongest{20};

  void Read() {
    char piece[4096];
    for (DWORD count = 0; ReadFile(mRead, piece, sizeof piece, &count, nullptr) && count > 0;) {
      const std::lock_guard lock(mLock);
      mText.append(piece, count);
      std::erase(mText, '\r');  // the platform's ends of lines
      mChange.notify_all();
    }
    const std::lock_guard lock(mLock);
    mHasEnded = true;
    mChange.notify_all();
  }

  HANDLE mRead = nullptr;
  HANDLE mWrite = nullptr;
  std::thread mReader;
  std::mutex mLock;
  std::condition_variable mChange;
  std::string mText;
  bool mHasEnded = false;
};

// The system ends what is in it as soon as this process has ended, however that happens.
inline HANDLE NewJob() {
  const HANDLE job = CreateJobObjectW(nullptr, nullptr);
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
  return job;
}

// Wine runs a program of its own for each console, which stays, with the ends of our pipes, when it is killed at its
// start.
enum class Console { None, Own };

class ProgramProcess {
 public:
  ProgramProcess(const std::string& program, const std::vector<std::string>& arguments,
                 Console console = Console::None) {
    std::wstring line = Quoted(Wide(program));
    for (const auto& argument : arguments) line += L" " + Quoted(Wide(argument));
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const HANDLE nothing = CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ, &inherited, OPEN_EXISTING, 0, nullptr);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = nothing;
    start.hStdOutput = mOut.Writer();
    start.hStdError = mError.Writer();
    PROCESS_INFORMATION facts{};
    // Held until it is in the job, so that all that it starts is in it, too.
    const DWORD flags = (console == Console::Own ? CREATE_NO_WINDOW : DETACHED_PROCESS) | CREATE_SUSPENDED;
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start, &facts)) {
      mProcess = facts.hProcess;
      AssignProcessToJobObject(mJob, mProcess);
      ResumeThread(facts.hThread);
      CloseHandle(facts.hThread);
    }
    CloseHandle(nothing);
    mOut.BeginReading();
    mError.BeginReading();
  }
  ~ProgramProcess() {
    Signal(SIGKILL);
    if (mProcess != nullptr) CloseHandle(mProcess);
    CloseHandle(mJob);
  }
  ProgramProcess(const ProgramProcess&) = delete;
  ProgramProcess& operator=(const ProgramProcess&) = delete;

  std::string ReadLine() { return mOut.TakeLine(); }

  // Everybody in a console hears Ctrl-C: a program that is to hear it has one of its own, into which this process goes
  // to press it.
  void Signal(int signal) const {
    if (mProcess == nullptr) return;
    if (signal == SIGKILL) {
      TerminateJobObject(mJob, kKilled);
      return;
    }
    if (signal == SIGSTOP) return Call("NtSuspendProcess");
    if (signal == SIGCONT) return Call("NtResumeProcess");
    FreeConsole();
    AttachConsole(GetProcessId(mProcess));
    SetConsoleCtrlHandler(nullptr, TRUE);  // this process is to go on
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    WaitForSingleObject(mProcess, kLongest);
    FreeConsole();
    AttachConsole(ATTACH_PARENT_PROCESS);
    SetConsoleCtrlHandler(nullptr, FALSE);
  }
  int End(int signal = 0) {
    if (signal != 0) Signal(signal);
    mOutput = mOut.TakeAll();
    mComplaint = mError.TakeAll();
    DWORD code = kKilled;
    if (mOut.HasEnded() && WaitForSingleObject(mProcess, kLongest) == WAIT_OBJECT_0)
      GetExitCodeProcess(mProcess, &code);
    return code == kKilled ? -1 : static_cast<int>(code);
  }
  [[nodiscard]] const std::string& Output() const { return mOutput; }
  [[nodiscard]] const std::string& Complaint() const { return mComplaint; }

 private:
  static constexpr DWORD kKilled = 0xDEAD;
  static constexpr DWORD kLongest = 5000;  // milliseconds until it has ended

  // What holds a whole process up, and lets it go on, is told in no header.
  void Call(const char* function) const {
    const auto address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), function);
    reinterpret_cast<LONG(NTAPI*)(HANDLE)>(reinterpret_cast<void*>(address))(mProcess);
  }

  // As the platform takes the line apart: a backslash counts only before a quotation mark.
  static std::wstring Quoted(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t slashes = 0;
    for (const wchar_t letter : word) {
      if (letter == L'"') quoted.append(slashes + 1, L'\\');
      slashes = letter == L'\\' ? slashes + 1 : 0;
      quoted += letter;
    }
    return quoted.append(slashes, L'\\') + L"\"";
  }

  HANDLE mJob = NewJob();
  HANDLE mProcess = nullptr;
  PrintedText mOut;
  PrintedText mError;
  std::string mOutput;
  std::string mComplaint;
};

}  // namespace kvtest
