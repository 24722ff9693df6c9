// What the system knows of memory that holds passwords.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>

#include "secret/CoreFiles.h"
#include "secret/Secret.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using ::testing::HasSubstr;

// The flags of the mapping that holds these bytes: "dd" it is left out of core files, "lo" never swapped out.
std::string FlagsOfMemory(const void* bytes) {
  std::ifstream maps("/proc/self/smaps");
  const auto wanted = reinterpret_cast<std::uintptr_t>(bytes);
  bool isThere = false;
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t from = 0;
    std::uintptr_t to = 0;
    if (std::sscanf(line.c_str(), "%lx-%lx ", &from, &to) == 2) isThere = from <= wanted && wanted < to;
    if (isThere && line.starts_with("VmFlags:")) return line;
  }
  return {};
}

// Some systems give a process no memory to lock, and the sanitizers' runtime takes no notice of the call.
bool CanLockMemory() {
  alignas(4096) static std::array<char, 4096> page{};
  return ::mlock(page.data(), page.size()) == 0 && FlagsOfMemory(page.data()).contains(" lo");
}

TEST(Secret, HasMemoryOfItsOwn) {
  const Secret secret("1234");
  const std::string flags = FlagsOfMemory(secret.View().data());
  EXPECT_THAT(flags, HasSubstr(" dd"));
  EXPECT_TRUE(flags.contains(" lo") || !CanLockMemory()) << flags;
}

// Whether a process that aborts leaves a core file.
bool LeavesCore(const TemporaryFolder& folder, bool forbids) {
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit all{RLIM_INFINITY, RLIM_INFINITY};
    if (::setrlimit(RLIMIT_CORE, &all) != 0 || ::chdir(folder.Path().c_str()) != 0) ::_exit(1);
    if (forbids) ForbidCoreFiles();
    (void)std::signal(SIGABRT, SIG_DFL);
    ::raise(SIGABRT);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFSIGNALED(status) && WCOREDUMP(status);
}

TEST(CoreFiles, AreNotLeftByAProcessThatForbidsThem) {
  const TemporaryFolder folder;
  if (!LeavesCore(folder, false)) GTEST_SKIP() << "no process leaves one here";
  EXPECT_FALSE(LeavesCore(folder, true));
}

}  // namespace
}  // namespace kv
