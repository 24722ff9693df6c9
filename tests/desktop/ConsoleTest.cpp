#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sstream>
#ifdef _WIN32
#include <windows.h>
#undef MessageBox  // here a class
#else
#include <sys/wait.h>
#endif

#include "base/PathText.h"
#include "desktop/StopScope.h"
#include "desktop/console/ConsolePacer.h"
#include "desktop/console/ConsolePrompts.h"
#include "desktop/console/ConsoleShell.h"
#include "desktop/console/HarmlessText.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TypedInput.h"

namespace kv {
namespace {

using Lines = std::deque<std::string>;

struct Console {
  explicit Console(ConsoleAnswers answers, std::optional<Lines> typed = std::nullopt)
      : prompts(std::move(answers), out, input) {
    input.lines = std::move(typed);
  }
  std::ostringstream out;
  test::TypedInput input;
  ConsolePrompts prompts;
};

TEST(ConsolePrompts, MessageBoxes) {
  using enum PromptButtons;
  const std::tuple<PromptButtons, bool, std::optional<Lines>, PromptAnswer, const char*> rows[] = {
      {Ok, false, {}, PromptAnswer::Ok, "T: a\n  b\n"},
      {YesNo, true, {}, PromptAnswer::Yes, "T: a\n  b [y/N] yes (--yes)\n"},
      {YesNo, false, {}, PromptAnswer::No, "T: a\n  b [y/N] no (nobody to ask; --yes consents)\n"},
      {YesNo, false, Lines{"y"}, PromptAnswer::Yes, "T: a\n  b [y/N] "},
      {YesNo, false, Lines{"yup"}, PromptAnswer::No, "T: a\n  b [y/N] "},
      {YesNo, false, Lines{}, PromptAnswer::No, "T: a\n  b [y/N] "},
      {OkCancel, true, {}, PromptAnswer::Ok, "T: a\n  b [ok/CANCEL] ok (--yes)\n"},
      {OkCancel, false, Lines{"ok"}, PromptAnswer::Ok, "T: a\n  b [ok/CANCEL] "},
      {OkCancel, false, Lines{""}, PromptAnswer::Cancel, "T: a\n  b [ok/CANCEL] "},
  };
  for (const auto& [buttons, yes, typed, answer, printed] : rows) {
    Console console({.yes = yes}, typed);
    EXPECT_EQ(console.prompts.Show({.text = "a\r\nb", .title = "T", .buttons = buttons}), answer) << printed;
    EXPECT_EQ(console.out.str(), printed);
  }
}

// A password answers secrets only, and one that is refused is not given for ever.
TEST(ConsolePrompts, TextsComeFromTheOptionsOrAreTyped) {
  Console given({.password = Secret("pw")});
  const InputBox secret{.text = "Password", .secret = true};
  for (const auto& answer : {std::optional<std::string>("pw"), {"pw"}, {"pw"}, {}}) {
    EXPECT_EQ(given.prompts.Ask(secret), answer);
  }
  EXPECT_EQ(given.prompts.Ask({.text = "Another", .secret = true}), "pw");
  EXPECT_EQ(given.prompts.Ask({.text = "Name", .initial = "x"}), std::nullopt);
  EXPECT_EQ(given.out.str().find("pw"), std::string::npos);

  Console console({}, Lines{"hidden", "", "typed", ""});
  EXPECT_EQ(console.prompts.Ask(secret), "hidden");
  EXPECT_TRUE(console.input.lastWasSecret);
  const InputBox name{.text = "Name", .initial = "initial"};
  for (const auto& answer : {std::optional<std::string>("initial"), {"typed"}, {"initial"}, {}}) {
    EXPECT_EQ(console.prompts.Ask(name), answer);  // nothing at last: the input has ended
    EXPECT_FALSE(console.input.lastWasSecret);
  }
}

TEST(ConsolePrompts, FilesComeInTheirOrderAndAreReplacedWithConsentOnly) {
  const TemporaryFolder folder;
  const std::string file = Utf8FromPath(folder.Put("x.txt", ""));
  Console console({.openFiles = {"a", "b"}});
  for (const auto& next : {std::optional<std::string>("a"), {"b"}, {}}) EXPECT_EQ(console.prompts.OpenFile({}), next);
  EXPECT_EQ(Console({}, Lines{""}).prompts.OpenFile({}), std::nullopt) << "nothing is typed";
  EXPECT_EQ(Console({.yes = true, .saveFiles = {file}}).prompts.SaveFile({}), file);
  EXPECT_EQ(Console({.saveFiles = {file}}).prompts.SaveFile({}), std::nullopt);
  EXPECT_EQ(Console({}, Lines{file, "y"}).prompts.SaveFile({}), file);
  EXPECT_EQ(Console({}, Lines{file, "n"}).prompts.SaveFile({}), std::nullopt);
}

#ifdef _WIN32
// In a console of its own, since everybody in a console hears it; a thread of its own is told.
void PressCtrlC(ConsolePacer& pacer) {
  FreeConsole();
  AllocConsole();
  const HANDLE input =
      CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  SetConsoleMode(input, ENABLE_PROCESSED_INPUT);
  GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
  pacer.Sleep(std::chrono::seconds(2));
}
#else
void PressCtrlC(ConsolePacer&) {
  std::raise(SIGINT);
}
#endif

TEST(ConsolePacerDeathTest, TheSecondCtrlCEndsAtOnce) {
  const auto twice = [] {
    ConsolePacer pacer;
    PressCtrlC(pacer);
    if (pacer.StopRequested()) PressCtrlC(pacer);
  };
  EXPECT_EXIT(twice(), testing::ExitedWithCode(130), "");
}

#ifndef _WIN32

// Started with nohup a program is meant to outlive its terminal.
TEST(ConsolePacer, TheLossOfTheTerminalIsAStopRequestUnlessItIsIgnored) {
  for (const bool isIgnored : {false, true}) {
    const auto before = std::signal(SIGHUP, isIgnored ? SIG_IGN : SIG_DFL);
    {
      ConsolePacer pacer;
      std::raise(SIGHUP);
      EXPECT_EQ(pacer.StopRequested(), !isIgnored);
    }
    std::signal(SIGHUP, before);
  }
}
#endif

#ifndef _WIN32
TEST(ConsoleShell, StartsAProgramWithItsParametersAndNamesAMissingOne) {
  const TemporaryFolder folder;
  const auto program = folder.Put("a program", "#!/bin/sh\necho \"$#:$*\" > \"$(dirname \"$0\")/seen\"\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  ASSERT_TRUE(ConsoleShell().Open("open", Utf8FromPath(program), "/t:K220 second"));
  ASSERT_GT(wait(nullptr), 0);
  EXPECT_EQ(TemporaryFolder::Content(folder.Path() / "seen"), "2:/t:K220 second\n");
  const auto missing = ConsoleShell().Open("open", "/nowhere/PID Server", "");
  ASSERT_FALSE(missing);
  EXPECT_THAT(missing.error(), ::testing::StartsWith("/nowhere/PID Server cannot be opened: "));
}
#endif

// A controller's text would otherwise clear the screen, rename the window or answer the next question by itself.
TEST(HarmlessText, ShowsWhatATerminalWouldObey) {
  const std::pair<std::string, std::string> rows[] = {
      {"K220 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA7", "K220 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA7"},
      {"a\x1B[2Jb\r\n\tc\x7F", "a<1B>[2Jb<0D>\n\tc<7F>"},
      {"\xC2\x90q\xC2\x9D"
       "0;x\xC2\x85\xC2\xA0",
       "<90>q<9D>0;x<85>\xC2\xA0"},
      {"\x9B"
       "2J\xC3(\xE2\x82(\xC0\x9B\xFF",
       "<9B>2J<C3>(<E2><82>(<C0><9B><FF>"},
      {std::string("\0", 1), "<00>"},
  };
  for (const auto& [text, shown] : rows) {
    EXPECT_EQ(HarmlessText(text, "\n\t"), shown);
    std::ostringstream whole, pieces;
    HarmlessBuffer wholeBuffer(whole, "\n\t"), piecesBuffer(pieces, "\n\t");
    std::ostream(&wholeBuffer) << text;
    for (const char c : text) std::ostream(&piecesBuffer).put(c);
    EXPECT_EQ(whole.str(), shown);
    EXPECT_EQ(pieces.str(), shown) << "a letter that comes in pieces";
  }
  struct : std::stringbuf {
    int sync() override { return ++flushes, 0; }
    int flushes = 0;
  } terminal;
  std::ostream shown(&terminal);
  HarmlessBuffer buffer(shown, "\n\t");
  std::ostream(&buffer) << "Password: " << std::flush;
  EXPECT_EQ(terminal.flushes, 1) << "a question without an end of line is seen";
  EXPECT_EQ(HarmlessText("\xE2\x82"), "<E2><82>") << "the text ends within a letter";
  EXPECT_EQ(HarmlessText("K220\nstate running"), "K220<0A>state running");
}

}  // namespace
}  // namespace kv
