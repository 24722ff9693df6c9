#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KvCmDrv1/Driver.h"
#include "clone/CloneVerify.h"
#include "clone/ManifestCheck.h"
#include "clone/RestoreBegin.h"
#include "clone/RestoreCheck.h"
#include "clone/SafeCreate.h"
#include "digest/Sha256.h"
#include "simulator/SimulatedController.h"
#include "tests/clone/CloneFixture.h"
#include "tests/support/SilentCloner.h"

// What is known of a clone file, and of a controller, before the one is written into the other.
namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A simulated controller behind the driver, on virtual time.
class Target {
 public:
  Target(VirtualPacer& pacer, const std::string& model, const std::string& os = {}, std::uint32_t memorySeed = 1)
      : mDriver(pacer, [this](const std::string&) { return simulated->NewLine(); }, nullptr) {
    sim::SimulatorOptions options;
    options.model = model;
    options.memorySeed = memorySeed;
    if (!os.empty()) options.osVersion = os;
    simulated = sim::SimulatedController::Create(options).value();
  }
  Channel& Link() { return *(mChannel = mDriver.GetChannel()); }
  char State() { return Link().GetControllerInfo(1).value_or(Channel::ControllerInfo()).state; }

  std::unique_ptr<sim::SimulatedController> simulated;

 private:
  Driver mDriver;
  std::shared_ptr<Channel> mChannel;
};

struct Trust : ::testing::Test {
  CloneFixture fixture;
  Target source{fixture.pacer, "AurexQ50"};
  CloneInfo info = Create();

  CloneInfo Create(PromptAnswer mayStop = PromptAnswer::Yes) {
    struct : KnowingPrompts {
      PromptAnswer Show(const MessageBox& box) override {
        return HasButton(box.buttons, answer) ? answer : PromptAnswer::Ok;
      }
      PromptAnswer answer = PromptAnswer::Yes;
    } prompts;
    prompts.answer = mayStop;
    SafeCreate safe(fixture.file);
    safe.SetComment("before\tthe repair");
    clsDumpPLC engine(fixture.window, prompts, fixture.pacer, fixture.pacer);
    safe.Create(engine, prompts, source.Link());
    EXPECT_THAT(safe.Warnings(), ElementsAre(HasSubstr("102 bytes in ZZ, which clone files never take")));
    return safe.Info().value_or(CloneInfo());
  }
  ManifestReport Report() { return CheckManifest(fixture.file, *InspectClone(fixture.file)); }
  // The file without its n-th line of segment AP.
  void LoseFlashLine() {
    std::string content = fixture.Content();
    const std::size_t at = content.find("WDF0030") - 3;
    fixture.folder.Put("clone.kdf", content.erase(at, content.find('\n', at) + 1 - at));
  }
};

TEST_F(Trust, TheManifestTellsWhatTheFileCannot) {
  EXPECT_EQ(Sha256().Hex(), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  Sha256 abc;
  abc.Add("a");
  abc.Add("bc");
  EXPECT_EQ(abc.Hex(), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");

  const ManifestReport fits = Report();
  ASSERT_EQ(fits.fit, ManifestFit::Fits) << fits.text;
  EXPECT_THAT(fits.text, HasSubstr("while the program was stopped"));
  EXPECT_EQ(fits.manifest->comment, "before the repair");
  EXPECT_EQ(fits.manifest->segments.size(), 7U);
  EXPECT_EQ(ParseManifest(PrintManifest(*fits.manifest)), *fits.manifest);

  LoseFlashLine();
  ASSERT_TRUE(InspectClone(fixture.file)->IsSound()) << "which nobody can see in the file";
  EXPECT_EQ(Report().fit, ManifestFit::Other);
  EXPECT_THAT(Report().text, HasSubstr("not as recorded: AP."));
  EXPECT_THAT(CheckBeforeRestore(source.Link(), *InspectClone(fixture.file), Report())->obstacles,
              ElementsAre(HasSubstr("does not fit the file")));

  Create(PromptAnswer::No);
  EXPECT_THAT(Report().text, HasSubstr("while the program ran"));
  std::filesystem::remove(ManifestPath(fixture.file));
  EXPECT_EQ(Report().fit, ManifestFit::Missing);
}

TEST_F(Trust, AManifestThatWasDamagedIsNotUsed) {
  const std::string good = PrintManifest(*Report().manifest);
  for (std::size_t cut = 0; cut + 3 < good.size(); ++cut) {
    EXPECT_FALSE(ParseManifest(good.substr(0, cut))) << good.substr(0, cut);
  }
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"Length\t", "Length\t-", "\"Length\" cannot"},
      {"SHA-256\t", "SHA-256\tg", "\"SHA-256\" cannot"},
      {"Unit\t1", "Unit\t256", "\"Unit\" cannot"},
      {"stopped", "asleep", "\"Program\" cannot"},
      {"Segment\tOP\tR", "Segment\tOP\tX", "\"Segment\" cannot"},
      {"End\t7", "End\t8", "segments are missing"},
      {"End\t7\r\n", "End\t7\r\nNote\tx", "behind its last line"},
      {"End\t7\r\n", "End\t7", ""},
      {"Unit\t1\r\n", "Unit\t1\r\nUnit\t1\r\n", "\"Unit\" must stand"}};
  for (const auto& [from, to, error] : rows) {
    std::string text = good;
    text.replace(text.find(from), std::string(from).size(), to);
    const auto parsed = ParseManifest(text);
    EXPECT_EQ(parsed.has_value(), *error == '\0') << to;
    EXPECT_THAT(parsed ? "" : parsed.error(), HasSubstr(error));
  }
  for (const char* name : {"Length", "SHA-256", "Model", "Hardware code", "O/S", "Build", "Unit", "Serial number",
                           "Project", "Program", "Made on", "Made by", "Comment"}) {
    std::string text = good;
    const std::size_t at = text.find(std::string("\n") + name + "\t") + 1;
    const auto parsed = ParseManifest(text.insert(at, "x"));
    EXPECT_THAT(parsed ? "" : parsed.error(), HasSubstr(std::string("\"") + name + "\" must stand"));
  }
  // The file's digest is right in these, but not what stands beside it.
  const std::tuple<const char*, const char*, const char*> facts[] = {
      {"Model\t", "Model\tx", "another model or O/S"},
      {"Unit\t1", "Unit\t2", "another unit"},
      {"Segment\tOP\tR", "Segment\tOP\tF", "other segments"}};
  for (const auto& [from, to, named] : facts) {
    std::string text = good;
    fixture.folder.Put("clone.kdf.manifest", text.replace(text.find(from), std::string(from).size(), to));
    EXPECT_EQ(Report().fit, ManifestFit::Other);
    EXPECT_THAT(Report().text, HasSubstr(named));
  }
  fixture.folder.Put("clone.kdf.manifest", std::string(100'000, 'x'));
  EXPECT_EQ(Report().fit, ManifestFit::Unreadable);
}

TEST_F(Trust, AnotherLayoutIsRefusedBeforeAnythingIsSent) {
  struct Row {
    std::uint32_t startShift, lengthShift;
    const char* obstacle;
  };
  const Row rows[] = {{0, 0, ""},
                      {0, 0xFFFFFFFE, "longer"},
                      {2, 0xFFFFFFFE, "begins before"},
                      {0, 2, "last byte"},
                      {0xFFFFFFFE, 2, "first byte"}};
  for (const Row& row : rows) {
    CloneInfo other = info;
    other.segments[3].segment.start += row.startShift;
    other.segments[3].segment.length += row.lengthShift;
    const auto check = CheckBeforeRestore(source.Link(), other, Report());
    if (*row.obstacle == '\0') {
      EXPECT_THAT(check->obstacles, IsEmpty());
    } else {
      EXPECT_THAT(check->obstacles, ElementsAre(HasSubstr(row.obstacle)));
    }
  }
  Target plain(fixture.pacer, "K220-22-R1");
  EXPECT_GT(CheckBeforeRestore(plain.Link(), info, Report())->obstacles.size(), 2U);
}

TEST_F(Trust, AnotherVersionIsAWarning) {
  EXPECT_THAT(CheckBeforeRestore(source.Link(), info, Report())->warnings, IsEmpty());
  Target newer(fixture.pacer, "AurexQ50", "4.99");
  const auto check = CheckBeforeRestore(newer.Link(), info, Report());
  EXPECT_THAT(check->warnings, ElementsAre(HasSubstr("the controller has 4.99")));
  EXPECT_THAT(check->obstacles, IsEmpty());
  EXPECT_EQ(OtherUnitText(info, 1), "");
  EXPECT_THAT(OtherUnitText(info, 9), HasSubstr("is for unit 1, but the controller is unit 9"));
  ManifestReport elsewhere = Report();
  *elsewhere.manifest->serialNumber += 1;
  EXPECT_THAT(CheckBeforeRestore(source.Link(), info, elsewhere)->warnings,
              ElementsAre(HasSubstr("not from this one")));
}

TEST_F(Trust, NothingIsBegunOnAnotherControllerOrIntoSomebodyElsesLoad) {
  struct Row {
    std::uint32_t serialNumber;
    char before, now;
    const char* refused;
  };
  const Row rows[] = {{11, 'R', 'R', ""},
                      {11, 'L', 'S', ""},
                      {11, 'R', 'L', "somebody else has begun to load"},
                      {12, 'R', 'R', "serial number 12 instead of 11"}};
  for (const Row& row : rows) {
    fixture.channel.info =
        Channel::ControllerInfo{.serialNumber = row.serialNumber, .state = row.now, .projectName = {}};
    fixture.channel.calls.clear();
    const Channel::ControllerInfo asked{.serialNumber = 11, .state = row.before, .projectName = {}};
    const auto begun = BeginRestore(fixture.channel, asked);
    EXPECT_THAT(begun ? "" : begun.error().reason, HasSubstr(row.refused));
    EXPECT_EQ(begun.has_value(), *row.refused == '\0');
    EXPECT_EQ(fixture.channel.calls.size(), 1U) << "only asked";
  }
}

TEST_F(Trust, ARestoreFailsPlainlyAtEachOfItsLinesOrIsFoundOutByVerify) {
  const auto restore = [this](Target& plc) {
    KnowingPrompts prompts;
    clsDumpPLC engine(fixture.window, prompts, fixture.pacer, fixture.pacer);
    Channel& link = plc.Link();
    engine.RestoreGhost(*link.GetSerialPort(), fixture.file, &link);
    return engine.Outcome();
  };
  Target twice(fixture.pacer, "AurexQ50", {}, 2);
  ASSERT_TRUE(twice.simulated->UseFaults({"double:nth=5"}));
  EXPECT_EQ(restore(twice).end, CloneEnd::Done);
  EXPECT_TRUE(VerifyClone(twice.Link(), fixture.file)->IsSame());
  const auto lines = static_cast<int>(info.frames);
  for (int nth = 1; nth <= lines; nth += nth < lines - 32 ? 29 : nth < lines - 3 ? 7 : 1) {
    const std::string selector = "nth=" + std::to_string(nth);
    for (const std::string kind : {"noreply:", "reset:", "lost:at=0,away=1,"}) {
      Target plc(fixture.pacer, "AurexQ50", {}, 2);
      EXPECT_EQ(plc.State(), 'R');  // it is met, so that lines alone are counted
      ASSERT_TRUE(plc.simulated->UseFaults({kind + selector}));
      const CloneOutcome outcome = restore(plc);
      EXPECT_EQ(outcome.cause, CloneCause::Reply) << kind << selector;
      EXPECT_THAT(outcome.reason, HasSubstr("Line " + std::to_string(nth + 4)));
      EXPECT_EQ(outcome.reason.contains("All lines but the end frame"), nth == lines) << outcome.reason;
      EXPECT_EQ(plc.State(), nth == lines || kind == "reset:" ? 'R' : 'L') << kind << selector;
    }
    Target liar(fixture.pacer, "AurexQ50", {}, 2);
    EXPECT_EQ(liar.State(), 'R');
    ASSERT_TRUE(liar.simulated->UseFaults({"lie:" + selector}));
    EXPECT_EQ(restore(liar).end, CloneEnd::Done);
    EXPECT_EQ(VerifyClone(liar.Link(), fixture.file)->IsSame(), nth == lines) << nth;
  }
}

}  // namespace
}  // namespace kv::test
