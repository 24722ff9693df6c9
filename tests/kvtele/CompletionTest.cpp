#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "apps/kvtele/Completions.h"
#include "apps/kvtele/ManPage.h"
#include "base/PathText.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

// What a command prints, errors among it.
std::string OutputOf(const std::string& command) {
  FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  std::string output;
  std::array<char, 4096> piece;
  while (std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe)) output.append(piece.data(), count);
  ::pclose(pipe);
  return output;
}

bool IsThere(const std::string& program) {
  return !OutputOf("command -v " + program).empty();
}

// A shell into which the completion is loaded, in a folder with two files and a program folder with a session.
class BashTest : public testing::Test {
 protected:
  BashTest() {
    folder.Put("plc.kdf", "");
    folder.Put("my plant.axt", "");
    std::filesystem::create_directories(folder.Path() / "plant/Sessions/North Mill");
    folder.Put("kvtele.bash", cli::BashCompletion(cli::DescribeProgram()));
  }

  // What is offered for the word at the end of `line`.
  [[nodiscard]] std::vector<std::string> Offered(const std::string& line) const {
    folder.Put("line", line);
    const std::string output = OutputOf(
        "cd '" + Utf8FromPath(folder.Path()) +
        "' && bash --norc -c 'source ./kvtele.bash; COMP_LINE=$(cat line); COMP_POINT=${#COMP_LINE}; _kvtele " +
        std::string(KVTELE_PROGRAM) + "; printf \"%s\\n\" \"${COMPREPLY[@]}\"'");
    std::vector<std::string> offered;
    std::size_t at = 0;
    for (std::size_t end = 0; (end = output.find('\n', at)) != std::string::npos; at = end + 1) {
      if (end > at) offered.push_back(output.substr(at, end - at));
    }
    return offered;
  }

  TemporaryFolder folder;
};

TEST_F(BashTest, OffersVerbsOptionsAndTheirValues) {
  const std::vector<std::string> none;
  const std::pair<const char*, testing::Matcher<std::vector<std::string>>> rows[] = {
      {"kvtele cl", ElementsAre("clone")},
      {"kvtele --yes dow", ElementsAre("download")},
      {"kvtele --passw", ElementsAre("--password", "--password-file")},
      {"kvtele --link sim:k220-2", ElementsAre("K220-22-R1")},  // the shell cuts at the colon
      {"kvtele --link tc", ElementsAre("tcp:")},
      {"kvtele --link=sim:Q50N", ElementsAre("Q50Net")},
      {"kvtele --model K670-67-T", Contains("K670-67-T40\\ /\\ K390-29-T40")},
      {"kvtele --link sim:Q50 clone ", ElementsAre("create", "restore", "verify", "info", "diff")},
      {"kvtele clone restore pl", IsSupersetOf({"plc.kdf", "plant"})},
      {"kvtele clone diff plc.kdf plc", ElementsAre("plc.kdf")},
      {"kvtele clone restore plc.kdf --unit-", ElementsAre("--unit-from-controller")},
      {"kvtele clone create plc.kdf --link s", Contains("sim:Q50")},
      {"kvtele clone create --comment ", IsEmpty()},
      {"kvtele regions read my", ElementsAre("my plant.axt")},
      {"kvtele read timer-p", ElementsAre("TIMER-PRESET")},
      {"kvtele --home pl", ElementsAre("plant")},
      {"kvtele --home plant --session N", ElementsAre("North\\ Mill")},
  };
  for (const auto& [line, expected] : rows) EXPECT_THAT(Offered(line), expected) << line;
  EXPECT_THAT(Offered("kvtele clone --"), IsSupersetOf({"--json", "--segments"}));
  EXPECT_THAT(Offered("kvtele --"), Not(Contains("--segments")));
}

TEST(CommandLineTexts, HoldNothingThatAManualPageTakesForAnOrder) {
  const cli::ProgramFacts facts{.program = {}, .verbs = {}, .exitCodes = ".a\n'b c\\d-e.f"};
  EXPECT_THAT(cli::ManPage(facts, "1"), testing::HasSubstr("\n\\&.a\n\\&'b c\\ed\\-e.f\n"));
}

TEST(CommandLineTexts, AreReadWithoutComplaintByTheProgramsThatReadThem) {
  const TemporaryFolder folder;
  const cli::ProgramFacts facts = cli::DescribeProgram();
  const struct {
    const char* program;
    const char* command;
    std::string text;
  } rows[] = {
      {"bash", "bash -n", cli::BashCompletion(facts)},
      {"zsh", "zsh -n", cli::ZshCompletion(facts)},
      {"fish", "fish -n", cli::FishCompletion(facts)},
      {"groff", "groff -man -Tutf8 -ww -z", cli::ManPage(facts, "1.0.0")},
  };
  for (const auto& row : rows) {
    if (!IsThere(row.program)) continue;
    EXPECT_EQ(OutputOf(std::string(row.command) + " '" + Utf8FromPath(folder.Put("text", row.text)) + "'"), "")
        << row.program;
  }
}

}  // namespace
}  // namespace kv::test
