#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/PathText.h"
#include "tests/kvtele/CommandBench.h"

namespace kv::test {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using Arguments = std::vector<std::string>;

constexpr const char* kModel = "AurexQ50";  // a small one that can be cloned

// A clone file, and what is done with it on simulated controllers.
struct CloneVerbs : ::testing::Test {
  CommandBench bench;
  std::string file = Utf8FromPath(bench.home.Path() / "plc.kdf");

  Result Clone(const std::string& action, Arguments more = {}, const std::string& model = kModel) {
    Arguments arguments{"clone", action, file};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return bench.On(model, arguments);
  }
  Result Create(Arguments more = {}) {
    more.insert(more.end(), {"--password", "1", "--stop"});
    return Clone("create", more);
  }
  // Changes one letter of line `number`, a frame.
  void Damage(int number) {
    std::string content = TemporaryFolder::Content(file);
    std::size_t at = 0;
    for (int line = 1; line < number; ++line) at = content.find('\n', at) + 1;
    content[at + 20] = content[at + 20] == '0' ? '1' : '0';
    bench.home.Put("plc.kdf", content);
  }
};

TEST_F(CloneVerbs, CreateInfoVerifyRestore) {
  const Result created = Create({"--segments", "AP"});
  EXPECT_EQ(created.exit, 0) << created.err;
  EXPECT_EQ(created.out, "");
  EXPECT_THAT(created.err, HasSubstr("about to STOP, Continue? [y/N] yes (--stop)\n"));
  EXPECT_THAT(created.err, HasSubstr("Korvantis PLC Cloner: Clone File Created Successfully.\n"));
  EXPECT_THAT(created.err, HasSubstr("which clone files never take"));
  const Result info = bench.Run({"clone", "info", file});
  EXPECT_EQ(info.exit, 0);
  EXPECT_THAT(info.out, HasSubstr("model          AurexQ50"));
  EXPECT_THAT(info.out, HasSubstr("segment        HW  00200000  210 bytes, "));
  EXPECT_THAT(info.out, Not(HasSubstr("  OP  ")));
  EXPECT_THAT(info.out, HasSubstr("damage         none\nmanifest       By its manifest the file is, byte for byte"));

  const Result same = Clone("verify");
  EXPECT_EQ(same.exit, 0) << same.err;
  EXPECT_THAT(same.out, HasSubstr("AP  00300000  20026 bytes: same\n"));
  EXPECT_THAT(same.out, EndsWith("Program and settings (HW, FT, MM, AP): same.\n"));
  const Result one = Clone("verify", {"--segments", "AP"});
  EXPECT_EQ(one.exit, 0);
  EXPECT_THAT(one.out, EndsWith("Program and settings (AP): same.\n"));
  const Result restored = Clone("restore", {"--yes", "--verify"});
  EXPECT_EQ(restored.exit, 0) << restored.err;
  EXPECT_EQ(restored.out, same.out);
  EXPECT_THAT(restored.err, HasSubstr("Clone Restore Successfully."));
}

TEST_F(CloneVerbs, DifferencesAreTheAnswerWithACodeOfTheirOwn) {
  ASSERT_EQ(Create().exit, 0);
  const std::string second = Utf8FromPath(bench.home.Path() / "second.kdf");
  std::filesystem::copy_file(file, second);
  EXPECT_EQ(bench.Run({"clone", "diff", file, second}).exit, 0);
  EXPECT_EQ(Clone("diff").exit, 0);

  ASSERT_EQ(Create({"--replace", "--segments", "HW"}).exit, 0);
  const Result fewer = bench.Run({"clone", "diff", second, file});
  EXPECT_EQ(fewer.exit, 5);
  EXPECT_THAT(fewer.out, HasSubstr("OP  00100000  1554 bytes: only in the first file\n"));

  CommandBench liar;
  liar.options.faults = {"lie:on=WD,nth=2"};
  liar.options.seed = 2;
  const Result told = liar.On(kModel, {"clone", "restore", second, "--yes", "--verify"});
  EXPECT_EQ(told.exit, 5);
  EXPECT_THAT(told.out, HasSubstr("bytes differ\n    00100"));
  const Result json = liar.On(kModel, {"clone", "verify", second, "--json"});
  EXPECT_EQ(json.exit, 5);
  EXPECT_THAT(json.out, HasSubstr("\"same\": false"));
}

TEST_F(CloneVerbs, ARestoreThatWouldHarmIsRefusedUnlessForced) {
  ASSERT_EQ(Create({"--segments", "HW"}).exit, 0);
  EXPECT_EQ(Clone("restore").exit, 1) << "nobody has said yes";
  const Result other = Clone("restore", {"--yes"}, "K450");
  EXPECT_EQ(other.exit, 4);
  EXPECT_THAT(other.err, HasSubstr("but the controller is a K450"));
  EXPECT_THAT(other.trace, Not(HasSubstr("/01WD")));

  Damage(6);
  const Result info = Clone("info");
  EXPECT_EQ(info.exit, 6);
  EXPECT_THAT(info.out, HasSubstr("damage         line 6: expected"));
  const Result damaged = Clone("restore", {"--yes"});
  EXPECT_EQ(damaged.exit, 6);
  EXPECT_EQ(damaged.trace, "") << "not even connected";
  EXPECT_EQ(Clone("verify").exit, 6);
  const Result forced = Clone("restore", {"--yes", "--force"});
  EXPECT_THAT(forced.err, HasSubstr("Warning: The clone file is damaged: line 6"));
  EXPECT_EQ(forced.exit, 7) << "the controller does not answer a frame with a bad checksum: " << forced.err;
  EXPECT_THAT(forced.err, HasSubstr("Line 6 of the clone file: no reply within 10 s"));
}

TEST_F(CloneVerbs, EndWithTheExitCodeThatTellsWhatToDo) {
  ASSERT_EQ(Create({"--segments", "HW"}).exit, 0);
  const std::string nowhere = Utf8FromPath(bench.home.Path() / "no" / "such.kdf");
  const std::tuple<const char*, Arguments, int, const char*> rows[] = {
      {"", {"create", nowhere}, 2, "--password"},
      {"", {"create", nowhere, "--password", "1", "--stop"}, 6, "such.kdf"},
      {"", {"create", nowhere, "--password", "1", "--segments", "OP,XY"}, 2, "no segment \"XY\""},
      {"", {"create", file, "--password", "1"}, 1, "exists. Replace it?"},
      {"", {"create", file, "--password", "1", "--yes", "--stop"}, 1, "--replace"},
      {"", {"create", file, "--password", "1", "--yes", "--replace"}, 1, "--no-stop"},
      {"", {"create", file, "--password", "2", "--replace", "--stop"}, 4, "password"},
      {"", {"create", file, "--stop", "--no-stop"}, 2, "--no-stop"},
      {"", {"verify", file, "--segments", "XY"}, 2, "no segment \"XY\""},
      {"", {"restore", file, "--stop"}, 2, "--backup"},
      {"", {"restore", file, "--backup", file, "--yes", "--replace", "--stop"}, 2, "would overwrite the clone file"},
      {"", {"info", nowhere}, 6, "such.kdf"},
      {"", {"info", file, file}, 2, "econd file can be given with diff only"},
      {"", {"verify", file, "--force"}, 2, "with restore only"},
      {"lost:on=WD,nth=2,away=600000", {"restore", file, "--yes", "--password", "1"}, 7, "Line 6 of the clone file"},
      {"refuse:on=WD,nth=2,code=0D", {"restore", file, "--yes", "--password", "1"}, 4, "refused: its flash"},
      {"wrongunit:on=WD,nth=2", {"restore", file, "--yes", "--password", "1"}, 1, "Line 6 of the clone file got an OK"},
      {"noreply:on=block", {"verify", file}, 7, "no reply"},
  };
  for (const auto& [fault, arguments, exit, message] : rows) {
    SCOPED_TRACE(message);
    const std::string before = TemporaryFolder::Content(file);
    CommandBench troubled;
    troubled.options.password = "1";
    if (*fault) troubled.options.faults = {fault};
    Arguments all{"clone"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const Result result = troubled.On(kModel, all);
    EXPECT_EQ(result.exit, exit) << result.err;
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_EQ(TemporaryFolder::Content(file), before);
  }
}

TEST_F(CloneVerbs, CtrlCEndsACreateAndTheTerminalShowsHowLongItTakes) {
  bench.options.baud = 9600;
  bench.errIsTerminal = true;
  bench.pacer.After(std::chrono::seconds(20), [&] { bench.pacer.RequestStop(); });
  const Result result = Create();
  EXPECT_EQ(result.exit, 130);
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_THAT(result.err, HasSubstr("DT (2 of 7): 1 of 3 KiB; in all 3 of 37 KiB, about "));
  EXPECT_THAT(result.err, HasSubstr("Operation Failed."));
}

TEST_F(CloneVerbs, EachConsentCoversOneThing) {
  ASSERT_EQ(Create().exit, 0);
  EXPECT_EQ(Clone("create", {"--password", "1", "--replace", "--no-stop"}).exit, 0);
  EXPECT_THAT(Clone("info").out, HasSubstr("while the program ran"));

  EXPECT_EQ(bench.On(kModel, {"stop"}).exit, 1) << "nobody has said yes";
  EXPECT_EQ(bench.On(kModel, {"stop", "--yes"}).exit, 0);
  const Result again = bench.On(kModel, {"stop"});
  EXPECT_EQ(again.exit, 0);
  EXPECT_THAT(again.err, HasSubstr("is stopped already"));
  const Result starts = Create({"--replace"});  // a create ends with starting the program
  EXPECT_EQ(starts.exit, 1);
  EXPECT_THAT(starts.err, HasSubstr("does not run. Creating a clone ends with starting its program. Continue?"));
  EXPECT_EQ(Create({"--replace", "--yes"}).exit, 0);
  EXPECT_THAT(bench.On(kModel, {"run"}).err, HasSubstr("runs already"));

  for (const bool isRunOffered : {false, true}) {
    CommandBench troubled;
    troubled.options.faults = {"refuse:on=block,code=0B,nth=5"};
    Arguments create{"clone", "create", file, "--password", "1", "--replace", "--stop"};
    if (isRunOffered) create.push_back("--yes");
    const Result failed = troubled.On(kModel, create);
    EXPECT_EQ(failed.exit, 4) << failed.err;
    EXPECT_THAT(failed.err, HasSubstr(isRunOffered ? "has been started again" : "was not started again"));
    EXPECT_EQ(troubled.On(kModel, {"run", "--yes"}).err.contains("runs already"), isRunOffered);
  }
}

TEST_F(CloneVerbs, ARestoreAfterOneThatWasCutMakesTheControllerWhole) {
  ASSERT_EQ(Create().exit, 0);
  CommandBench other;
  other.options.seed = 2;
  other.options.memorySeed = 2;
  other.options.faults = {"refuse:on=WD,nth=60,code=0D"};
  EXPECT_EQ(other.On(kModel, {"clone", "restore", file, "--yes"}).exit, 4);
  EXPECT_EQ(other.On(kModel, {"run"}).exit, 1);
  const Result refused = other.On(kModel, {"clone", "restore", file, "--yes"});
  EXPECT_EQ(refused.exit, 1);
  EXPECT_THAT(refused.err, HasSubstr("somebody else's is under way"));
  EXPECT_THAT(refused.err, HasSubstr("or give --end-load"));
  EXPECT_THAT(refused.trace, Not(HasSubstr("/01CCM")));
  const Result whole = other.On(kModel, {"clone", "restore", file, "--yes", "--end-load", "--verify"});
  EXPECT_EQ(whole.exit, 0) << whole.err;
  EXPECT_THAT(whole.trace, HasSubstr("/01CCM"));
}

TEST_F(CloneVerbs, ASparePartWithAnotherUnitAndDataInAnErasedSegmentCanBeRestored) {
  ASSERT_EQ(Create().exit, 0);
  std::string content = TemporaryFolder::Content(file);
  for (std::size_t at = 0; (at = content.find("/01WDF0030")) != std::string::npos;) {
    content.erase(at, content.find('\n', at) + 1 - at);  // as if AP had been erased
  }
  bench.home.Put("plc.kdf", content);
  const Result changed = Clone("restore", {"--yes"});
  EXPECT_EQ(changed.exit, 4);
  EXPECT_THAT(changed.err, HasSubstr("not as recorded: AP."));
  std::filesystem::remove(file + ".manifest");

  CommandBench spare;
  spare.options.unit = 7;
  spare.options.memorySeed = 2;
  const Arguments restore{"--unit", "7", "clone", "restore", file, "--yes", "--verify"};
  const auto with = [&](Arguments more) {
    more.insert(more.begin(), restore.begin(), restore.end());
    return spare.On(kModel, more);
  };
  for (const Arguments& forced : {Arguments{}, Arguments{"--force"}}) {  // unit 1 may be a machine on the same line
    const Result refused = with(forced);
    EXPECT_EQ(refused.exit, 4);
    EXPECT_THAT(refused.err, HasSubstr("--unit-from-controller"));
    EXPECT_THAT(refused.trace, Not(HasSubstr("WD")));
  }
  const std::string backup = Utf8FromPath(bench.home.Path() / "backup.kdf");
  const Result differs = with({"--unit-from-controller", "--backup", backup, "--password", "1", "--stop"});
  EXPECT_EQ(differs.exit, 5) << differs.err;
  EXPECT_THAT(differs.err, HasSubstr("What the controller holds in AP stays"));
  EXPECT_THAT(differs.err, HasSubstr("--erase-empty erases it"));
  EXPECT_EQ(with({"--unit-from-controller", "--erase-empty"}).exit, 0);
  EXPECT_EQ(TemporaryFolder::Content(file), content);

  EXPECT_EQ(spare.On(kModel, {"--unit", "7", "clone", "restore", backup, "--yes", "--verify"}).exit, 0);
}

TEST_F(CloneVerbs, CtrlCAtThePasswordEndsWith130) {
  bench.input.lines.emplace();
  bench.input.onRead = [&] { bench.pacer.RequestStop(); };
  EXPECT_EQ(Clone("create", {"--stop"}).exit, 130);
}

}  // namespace
}  // namespace kv::test
