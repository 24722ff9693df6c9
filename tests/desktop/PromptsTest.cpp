#include <gtest/gtest.h>

#include <sstream>

#include "base/PathText.h"
#include "desktop/ScriptedPrompts.h"
#include "desktop/console/ConsolePrompts.h"
#include "tests/base/TemporaryFolder.h"
#include "tests/desktop/TypedInput.h"

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

TEST(ConsolePrompts, APasswordAnswersSecretsOnlyAndNotForEver) {
  Console console({.password = "pw"});
  const InputBox secret{.text = "Password", .secret = true};
  for (int i = 0; i < 3; ++i) EXPECT_EQ(console.prompts.Ask(secret), "pw");
  EXPECT_EQ(console.prompts.Ask(secret), std::nullopt);
  EXPECT_EQ(console.prompts.Ask({.text = "Another", .secret = true}), "pw");
  EXPECT_EQ(console.prompts.Ask({.text = "Name", .initial = "x"}), std::nullopt);
  EXPECT_EQ(console.out.str().find("pw"), std::string::npos);
}

TEST(ConsolePrompts, TextsAreTyped) {
  Console console({}, Lines{"hidden", "", "typed", ""});
  EXPECT_EQ(console.prompts.Ask({.text = "Password", .initial = "no", .secret = true}), "hidden");
  EXPECT_TRUE(console.input.lastWasSecret);
  EXPECT_EQ(console.prompts.Ask({.text = "Name", .initial = "initial"}), "initial");
  EXPECT_FALSE(console.input.lastWasSecret);
  EXPECT_EQ(console.prompts.Ask({.text = "Name", .initial = "initial"}), "typed");
  EXPECT_EQ(console.prompts.Ask({.text = "Name"}), "");
  EXPECT_EQ(console.prompts.Ask({.text = "Name", .initial = "initial"}), std::nullopt);  // end of the input
}

TEST(ConsolePrompts, FilesComeInTheirOrder) {
  Console console({.openFiles = {"a", "b"}});
  for (const char* file : {"a", "b"}) EXPECT_EQ(console.prompts.OpenFile({}), file);
  EXPECT_EQ(console.prompts.OpenFile({}), std::nullopt);
}

TEST(ConsolePrompts, AFileThatIsThereIsReplacedWithConsentOnly) {
  const TemporaryFolder folder;
  const std::string file = Utf8FromPath(folder.Put("x.txt", ""));
  EXPECT_EQ(Console({.yes = true, .saveFiles = {file}}).prompts.SaveFile({}), file);
  EXPECT_EQ(Console({.saveFiles = {file}}).prompts.SaveFile({}), std::nullopt);
  EXPECT_EQ(Console({}, Lines{file, "y"}).prompts.SaveFile({}), file);
}

TEST(ScriptedPrompts, SurprisesAreNamed) {
  std::vector<std::string> failures;
  {
    ScriptedPrompts prompts([&](const std::string& what) { failures.push_back(what); });
    EXPECT_EQ(prompts.Show({.text = "Boom", .buttons = PromptButtons::OkCancel}), PromptAnswer::Cancel);
    prompts.Press(PromptAnswer::Yes);
    EXPECT_EQ(prompts.Ask({.text = "Name", .title = "T"}), std::nullopt);
    EXPECT_EQ(prompts.Show({.text = "Done", .title = "T"}), PromptAnswer::Ok);
    prompts.Enter("x");
  }
  ASSERT_EQ(failures.size(), 4U);
  EXPECT_EQ(failures[1], "unexpected prompt, the next answer is of another kind: input box 'T': Name");
}

}  // namespace
}  // namespace kv
