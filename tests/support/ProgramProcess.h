#pragma once

#ifdef _WIN32
#include "tests/support/ProgramProcessWindows.h"
#else
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <string>
#include <utility>
#include <vector>

#include "tests/ports/Partners.h"

namespace kvtest {

#ifndef _WIN32

// What a program is to have that hears SIGINT, on Windows.
enum class Console { None, Own };

// A program that runs as a process of its own. It is ended in any case.
class ProgramProcess {
 public:
  ProgramProcess(const std::string& program, std::vector<std::string> arguments, Console /*console*/ = Console::None) {
    arguments.insert(arguments.begin(), program);
    std::vector<char*> pointers;
    for (auto& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int out[2];
    int error[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(error, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, error[1], STDERR_FILENO);
    if (::posix_spawn(&mProcess, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) mProcess = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(error[1]);
    mOut = Descriptor(out[0]);
    mError = Descriptor(error[0]);
  }
  ~ProgramProcess() {
    if (mProcess > 0) {
      ::kill(mProcess, SIGKILL);
      ::waitpid(mProcess, nullptr, 0);
    }
  }
  ProgramProcess(const ProgramProcess&) = delete;
  ProgramProcess& operator=(const ProgramProcess&) = delete;

  // The first line that it prints, and each that follows.
  std::string ReadLine() {
    std::string line;
    while (!line.ends_with('\n')) {
      const auto letter = mOut.Take(1);
      if (letter.empty()) break;
      line += letter;
    }
    return line.empty() ? line : line.substr(0, line.size() - 1);
  }

  void Signal(int signal) const { ::kill(mProcess, signal); }
  // Waits for the end, after `signal` if one is given; the exit code, or -1 when it ended otherwise.
  int End(int signal = 0) {
    if (signal != 0) ::kill(mProcess, signal);
    mOutput = mOut.Take(1 << 20);
    mComplaint = mError.Take(1 << 20);
    int status = 0;
    if (mOut.IsReady(0) && ::waitpid(mProcess, &status, 0) == mProcess) mProcess = -1;
    return WIFEXITED(status) && mProcess < 0 ? WEXITSTATUS(status) : -1;
  }
  [[nodiscard]] pid_t Number() const { return mProcess; }
  // What it printed, after End().
  [[nodiscard]] const std::string& Output() const { return mOutput; }
  [[nodiscard]] const std::string& Complaint() const { return mComplaint; }

 private:
  pid_t mProcess = -1;
  Descriptor mOut;
  Descriptor mError;
  std::string mOutput;
  std::string mComplaint;
};
#endif

#ifdef KVSIM_PROGRAM
class KvsimProcess : public ProgramProcess {
 public:
  explicit KvsimProcess(std::vector<std::string> arguments, Console console = Console::None)
      : ProgramProcess(KVSIM_PROGRAM, std::move(arguments), console) {}

  // The line that tells that clients can come.
  std::string ReadyLine() { return ReadLine(); }
  // The number behind the last ":" of the ready line.
  std::uint16_t Port() {
    const auto line = ReadyLine();
    return static_cast<std::uint16_t>(std::stoi("0" + line.substr(line.rfind(':') + 1)));
  }
};
#endif

}  // namespace kvtest
