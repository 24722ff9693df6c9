// A day with a controller that wants a password, on a line that echoes: wherever somebody could look afterwards, or
// meanwhile, nothing tells it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>

#include <cstdlib>

#include "base/ScopeGuard.h"
#include "tests/support/ProgramProcess.h"
#include "tests/support/SecretForms.h"

namespace kvtest {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kPassword = "Zx7+kQ2h";

class SecretDay : public testing::Test {
 protected:
  SecretDay() {
    std::filesystem::create_directories(home.Path() / "Sessions" / "Default");
    const auto file = home.Put("password.txt", std::string(kPassword) + "\n");
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    link = "tcp:127.0.0.1:" + std::to_string(controller.Port());
  }

  [[nodiscard]] std::vector<std::string> Arguments(std::vector<std::string> verb) {
    const std::string trace = (home.Path() / ("trace" + std::to_string(++traces))).string();
    verb.insert(verb.begin(), {"--home", home.Path().string(), "--link", link, "--trace", trace});
    return verb;
  }
  [[nodiscard]] std::string In(const char* name) const { return (home.Path() / name).string(); }

  // The environment of programs that are started meanwhile.
  static auto WithVariable(const char* password) {
    ::setenv("KVTELE_PASSWORD", password, 1);
    return kv::ScopeGuard([] { ::unsetenv("KVTELE_PASSWORD"); });
  }

  int Do(std::vector<std::string> verb) {
    ProgramProcess process(KVTELE_PROGRAM, Arguments(std::move(verb)));
    const int exit = process.End();
    printed += process.Output() + process.Complaint();
    return exit;
  }

  static bool ShowsLetters(int terminal) {
    termios now{};
    return ::tcgetattr(terminal, &now) == 0 && (now.c_lflag & ECHO) != 0;
  }

  // At a terminal: types the line as soon as the program has printed `question`. What the terminal showed.
  std::string DoTyping(std::vector<std::string> verb, const std::string& question, const std::string& line) {
    verb = Arguments(std::move(verb));
    verb.insert(verb.begin(), KVTELE_PROGRAM);
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      std::vector<char*> pointers;
      for (auto& word : verb) pointers.push_back(word.data());
      pointers.push_back(nullptr);
      ::execv(pointers[0], pointers.data());
      ::_exit(127);
    }
    std::string shown;
    bool isTyped = false;
    char piece[1024];
    for (ssize_t count = 0; (count = ::read(terminal, piece, sizeof(piece))) > 0;) {
      shown.append(piece, static_cast<std::size_t>(count));
      if (isTyped || !shown.contains(question)) continue;
      while (ShowsLetters(terminal)) ::poll(nullptr, 0, 1);  // what is typed before would be shown, and thrown away
      isTyped = ::write(terminal, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << shown;
    EXPECT_TRUE(ShowsLetters(terminal)) << "for the next program";
    ::close(terminal);
    return shown;
  }

  kv::TemporaryFolder home;
  KvsimProcess controller{{"--model", "K220-22-R1", "--password", kPassword, "--tcp", "0", "--fault", "echo:on=AC",
                           "--fault", "echo:on=GI"}};
  std::string link;
  std::string printed;
  int traces = 0;
};

std::string ContentOf(pid_t process, const char* what) {
  return kv::TemporaryFolder::Content("/proc/" + std::to_string(process) + "/" + what);
}

TEST_F(SecretDay, LeavesNothingThatTellsThePassword) {
  const kv::test::SecretForms secret(kPassword);
  {
    const auto known = WithVariable(kPassword);
    EXPECT_EQ(Do({"--user", "anna", "write", "MI", "7", "5"}), 0) << printed;
    EXPECT_EQ(Do({"clone", "create", In("plc.kdf"), "--stop", "--comment", "the day's"}), 0) << printed;
    EXPECT_EQ(Do({"--yes", "clone", "restore", In("plc.kdf")}), 0) << printed;
    const auto plant = home.Put("plant.axt", "Version 100\r\nAurex\r\n2\tMI\t100\t100\t\r\n\r\n");
    ProgramProcess watch(KVTELE_PROGRAM, Arguments({"watch", plant.string(), "--for", "30"}));
    EXPECT_THAT(watch.ReadLine(), HasSubstr("\tMI\t100\t"));
    EXPECT_THAT(ContentOf(watch.Number(), "cmdline"), HasSubstr("watch"));
    EXPECT_THAT(ContentOf(watch.Number(), "environ"), HasSubstr("KVTELE_PASSWORD="));
    for (const char* what : {"cmdline", "environ"}) EXPECT_FALSE(secret.AreIn(ContentOf(watch.Number(), what))) << what;
    EXPECT_EQ(watch.End(SIGINT), 130);
  }
  EXPECT_EQ(Do({"--yes", "--password-file", In("password.txt"), "stop"}), 0) << printed;
  EXPECT_EQ(Do({"--yes", "--json", "run"}), 4);
  printed += DoTyping({"write", "MI", "7", "6"}, "up to 8 characters:", std::string(kPassword) + "\n");
  {
    const auto wrong = WithVariable("Zx7+kQ2H");
    EXPECT_EQ(Do({"write", "MI", "7", "8"}), 4);
    printed += DoTyping({"write", "MI", "7", "7"}, "KVTELE_PASSWORD is wrong here", std::string(kPassword) + "\n");
  }
  {
    const auto known = WithVariable(kPassword);
    EXPECT_EQ(Do({"report"}), 0) << printed;
    EXPECT_THAT(printed, HasSubstr("Telepanel error report\nkvtele "));
    EXPECT_THAT(printed, HasSubstr("[unit 1: identification]"));
  }
  EXPECT_FALSE(secret.AreIn(printed)) << printed;
  EXPECT_THAT(secret.FilesIn(home.Path(), "password.txt"), IsEmpty());
  EXPECT_TRUE(secret.AreIn(kv::TemporaryFolder::Content(home.Path() / "password.txt"))) << "it would be found";
  EXPECT_THAT(kv::TemporaryFolder::Content(home.Path() / "trace1"), HasSubstr("<xx")) << "the line does echo";
}

}  // namespace
}  // namespace kvtest
