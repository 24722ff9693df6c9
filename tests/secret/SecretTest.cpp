#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>

#include "base/PathText.h"
#include "secret/CoreFiles.h"
#include "secret/SecretFile.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using ::testing::HasSubstr;

TEST(Secret, IsWipedWhereItWasTaken) {
  for (const std::string text : {"1234", "a password that is too long to stand in the text itself"}) {
    std::string plain = text + "and more";
    plain.resize(text.size());  // what was there before is wiped with it
    const char* const bytes = plain.data();
    const std::size_t size = text.size() + 8;
    const Secret taken = Secret::TakenFrom(plain);
    EXPECT_EQ(taken.View(), text);
    EXPECT_EQ(plain, "");
    EXPECT_EQ(std::string(bytes, size), std::string(size, '\0'));
  }
}

TEST(Secret, IsCopiedMovedAndCleared) {
  Secret one("1234");
  Secret other = one;
  one.Clear();
  EXPECT_TRUE(one.IsEmpty());
  EXPECT_EQ(other.View(), "1234");
  one = std::move(other);
  EXPECT_EQ(one.View(), "1234");
  one = Secret();
  EXPECT_EQ(one.View(), "");
}

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

TEST(SecretFile, IsReadWhenOnlyItsOwnerCan) {
  using std::filesystem::perms;
  const TemporaryFolder folder;
  const struct {
    std::string content;
    unsigned mode;
    const char* expected;  // the password, or what is told
  } rows[] = {
      {"1234\n", 0600, "1234"},
      {"12 4\r\nnotes\n", 0400, "12 4"},
      {"1234", 0640, "others than its owner"},
      {"1234", 0604, "others than its owner"},
      {"1234", 0620, "others than its owner"},
      {"\n1234", 0600, "empty first line"},
      {"", 0600, "empty first line"},
      {std::string(1025, 'x'), 0600, "too long"},
  };
  for (const auto& row : rows) {
    const auto file = folder.Put("password", row.content);
    std::filesystem::permissions(file, static_cast<perms>(row.mode));
    const auto read = ReadSecretFile(file);
    EXPECT_THAT(read ? std::string(read->View()) : read.error().happened, HasSubstr(row.expected)) << row.mode;
    EXPECT_EQ(read.has_value(), read && read->View() == row.expected) << row.content;
    std::filesystem::remove(file);
  }
  EXPECT_THAT(ReadSecretFile(folder.Path()).error().happened, HasSubstr("no plain file"));
  EXPECT_THAT(ReadSecretFile(folder.Path() / "none").error().happened, HasSubstr("cannot be read"));
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
