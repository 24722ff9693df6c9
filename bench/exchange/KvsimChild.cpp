#include "bench/exchange/KvsimChild.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace bench {

KvsimChild::KvsimChild(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), KVSIM_PROGRAM);
  std::vector<char*> pointers;
  for (auto& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  int out[2];
  if (::pipe2(out, O_CLOEXEC) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  if (::posix_spawn(&mProcess, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) mProcess = -1;
  posix_spawn_file_actions_destroy(&actions);
  ::close(out[1]);
  for (char letter = 0; ::read(out[0], &letter, 1) == 1 && letter != '\n';) mReadyLine += letter;
  ::close(out[0]);
}

KvsimChild::~KvsimChild() {
  if (mProcess <= 0) return;
  ::kill(mProcess, SIGTERM);
  ::waitpid(mProcess, nullptr, 0);
}

}  // namespace bench
