// What is sent of an O/S to an Aurex controller, and what its answers do.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"
#include "link/BlockOperations.h"
#include "tests/support/FullDisk.h"

namespace kv::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

TEST(AurexOsSending, CountsChunksTo255AndFromOneAgain) {
  AurexOsFixture fixture;
  fixture.Put({"4.75", 3}, {"1.30", 0}, 600'000);
  std::int64_t chunks = 0;
  fixture.desk.onProgress = [&](std::int64_t, std::int64_t count) { chunks = std::max(chunks, count); };
  EXPECT_TRUE(fixture.Download()) << fixture.outcome.reason;
  EXPECT_GT(chunks, 300);
  const auto& told = fixture.controller->told;
  const auto last = std::ranges::find(told, "65 1.255");
  ASSERT_NE(last, told.end());
  EXPECT_EQ(*(last - 1), "65 1.254");
  EXPECT_EQ(*(last + 1), "65 1.1");
  EXPECT_THAT(told, testing::AllOf(Contains("65 2.1"), Contains("65 16.1"), testing::Not(Contains("65 1.256"))));
  AurexOsFixture full;
  full.Put({"4.75", 3}, {"1.30", 0}, 4920);  // its third part fills a chunk
  EXPECT_TRUE(full.Download()) << full.outcome.reason;
}

// What is said of it, how long it is waited for, and what is left, stands in the record: here and below.
TEST(AurexOsSending, TakesNothingForDoneThatIsNot) {
  using Falsify = std::function<void(AurexOsFixture&)>;
  const auto status = [](std::size_t place, char value) -> Falsify {
    return [=](AurexOsFixture& fixture) {
      fixture.controller->onBlock = [=](const sim::BlockRequest& request, sim::BlockReply& reply) {
        if (request.opCode == 7) reply.payload[place] = value;
      };
    };
  };
  const auto answered = [](std::uint16_t operation, int code) -> Falsify {
    return [=](AurexOsFixture& fixture) {
      fixture.controller->onBlock = [=](const sim::BlockRequest& request, sim::BlockReply& reply) {
        if (request.opCode == operation) reply.status = code;
      };
    };
  };
  // What it says of itself once it has been told to restart.
  const auto thenSays = [](const char* command, const char* text) -> Falsify {
    return [=](AurexOsFixture& fixture) {
      fixture.controller->onText = [=, &fixture](std::string_view asked, sim::TextReply& reply) {
        const bool isBack = std::ranges::count(fixture.controller->told, "CCE") > 0;
        if (isBack && asked.starts_with(command)) reply.text = text;
      };
    };
  };
  const Falsify doesNotRestart = [](AurexOsFixture& fixture) { fixture.controller->onlyAnswered = "CCE"; };
  // Its own O/S once more.
  const auto sameUnder = [](const std::vector<std::string>& faults) -> Falsify {
    return [=](AurexOsFixture& fixture) {
      fixture.Put({"4.60", 19}, {"1.30", 0}, 200);
      fixture.desk.choice = {fixture.folder / "AurexK220v46019.kos", fixture.folder / "AurexFontv1300.kft"};
      fixture.UseFaults(faults);
    };
  };
  // The power fails just before it is told to program that, and its refusal is lost; or it only says that it does.
  const Falsify failsWithTheSame = sameUnder({"reset:on=block,nth=12", "lost:dir=in,on=block,nth=13,away=1000"});
  const Falsify liesOfTheSame = sameUnder({"lie:on=block,nth=12"});
  const Falsify restarts = [](AurexOsFixture& fixture) {
    fixture.controller->onBlock = [&fixture](const sim::BlockRequest& request, sim::BlockReply&) {
      if (request.opCode == 65 && request.param3 == 2) fixture.controller->Restart();
    };
  };
  struct Row {
    const char* what;
    Falsify falsify;
  };
  const Row rows[] = {
      {"never idle", status(2, 'P')},
      {"no status", status(0, 'X')},
      {"flash error", status(1, 1)},
      {"topic not valid", status(9, 0)},
      {"busy", answered(65, 5)},
      {"a status that means nothing", answered(65, 77)},
      {"its power fails, and its old O/S runs", restarts},
      {"69 is refused", answered(69, 143)},
      {"it reports the old O/S", thenSays("ID", "IDK220-22-R1|10|4.60|19")},
      {"it reports another build", thenSays("ID", "IDK220-22-R1|10|4.75|07")},
      {"it reports no number", thenSays("ID", "IDK220-22-R1|10|x.y|")},
      {"it reports another model", thenSays("ID", "IDK220-22-R2|10|4.75|03")},
      {"it does not restart", doesNotRestart},
      {"the same number", failsWithTheSame},
      {"it only says that it programs it", liesOfTheSame},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    AurexOsFixture fixture;
    fixture.Put();
    row.falsify(fixture);
    fixture.pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2026} / 3 / 9} - std::chrono::minutes(2));
    EXPECT_FALSE(fixture.Download());
    EXPECT_TRUE(fixture.DownloadAgain()) << fixture.outcome.reason;
  }
}

TEST(AurexOsSending, TellsOfAProgramThatDoesNotRunAfterwards) {
  AurexOsFixture fixture;
  fixture.Put();
  fixture.controller->onText = [&](std::string_view asked, sim::TextReply& reply) {
    if (asked.starts_with("IN") && std::ranges::count(fixture.controller->told, "CCE") > 0) reply.text[14] = 'S';
  };
  EXPECT_TRUE(fixture.Download()) << fixture.outcome.reason;
}

// Each line of the memory that was saved is answered; one of them is not written.
TEST(AurexOsSending, ProvesTheMemoryThatItHasWrittenBack) {
  int values = 0;
  int settings = 0;
  for (int line = 1; line < 381; line += 20) {
    AurexOsFixture fixture(Plc("K220-22-R1", "3.73"));
    fixture.Put();
    const std::string memory = fixture.Memory();
    fixture.UseFaults({"lie:on=WD,nth=" + std::to_string(line)});
    const bool isDone = fixture.Download();
    const bool isTold = std::ranges::any_of(fixture.desk.said, [](const auto& box) { return box.contains("differ"); });
    const bool isFailure = fixture.outcome.cause == DownloadCause::Unproven;
    EXPECT_EQ(isFailure, !isDone) << fixture.outcome.reason;
    EXPECT_TRUE(isTold || isFailure || fixture.Memory() == memory) << line;
    EXPECT_EQ(fixture.outcome.reason.contains("is saved in"), isTold || isFailure) << line;
    values += isTold ? 1 : 0;
    settings += isFailure ? 1 : 0;
  }
  EXPECT_GT(values, 2);
  EXPECT_GT(settings, 2);
}

TEST(AurexOsSending, IsNoSuccessWhenOneLineOfTheMemoryWasAnsweredByAnother) {
  AurexOsFixture fixture(Plc("K220-22-R1", "3.73"));
  fixture.Put();
  fixture.UseFaults({"wrongunit:on=WD,nth=200"});
  EXPECT_FALSE(fixture.Download());
  EXPECT_EQ(fixture.outcome.cause, DownloadCause::Unproven);
  EXPECT_THAT(fixture.outcome.reason, HasSubstr("Whether this was written is not known."));
}

TEST(AurexOsSending, SendsNothingOfFilesThatAreNotTheOnesThatWereShown) {
  struct Row {
    const char* what;
    bool isAsked;  // it becomes so while the user is asked, or was so before
    const char* file;
    std::optional<std::string> content;  // none: it is not there
  };
  const char* const os = "AurexK220v47503.kos";
  const char* const fonts = "AurexFontv1300.kft";
  const std::string good = SampleFonts("K220-22-R1", {"1.30", 0});
  const std::string otherOs = SampleOs("K220-22-R1", {"4.75", 3}, 2000);
  const Row rows[] = {
      {"fonts of 15 bytes", false, fonts, good.substr(0, 15)},
      {"fonts that are cut", false, fonts, good.substr(0, 100)},
      {"fonts of another model", false, fonts, SampleFonts("K330", {"1.30", 0})},
      {"an O/S that is cut", false, os, otherOs.substr(0, 1000)},
      {"no O/S", false, os, {}},
      {"no fonts", false, fonts, {}},
      {"another O/S of the same name", true, os, otherOs},
      {"fonts that vanish", true, fonts, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    AurexOsFixture fixture;
    fixture.Put();
    const auto change = [&] {
      std::filesystem::remove(fixture.folder / row.file);
      if (row.content) PutFile(fixture.folder / row.file, *row.content);
    };
    if (!row.isAsked) change();
    fixture.desk.onBox = [&](const MessageBox&) {
      if (row.isAsked) change();
    };
    std::string shown;
    fixture.order.onPreview = [&](const DownloadPreview& preview) {
      for (const std::string& warning : preview.warnings) shown += warning;
    };
    EXPECT_FALSE(fixture.Download());
    const bool isIllegal = std::string(row.what).starts_with("fonts") && !row.isAsked;
    EXPECT_EQ(isIllegal, shown.contains("AurexFont")) << "it is seen before: " << shown;
  }
}

TEST(AurexOsSending, StopsOnlyWhenTheUserKnowsWhatIsLeft) {
  enum class At { SecondChunk, Reset, MemoryLine, Compared };
  struct Row {
    At at;  // where the stop comes
    bool isDryRun;
    bool asks;
    bool isMeant;  // the answer to the question about the stop
  };
  // clang-format off: one row a line
  const Row rows[] = {
      {At::SecondChunk, true, true, false},
      {At::SecondChunk, false, true, false},
      {At::SecondChunk, false, true, true},
      {At::SecondChunk, false, false, false},
      {At::MemoryLine, false, true, false},
      {At::Reset, false, true, false},
      {At::Reset, false, true, true},
      {At::MemoryLine, false, true, true},
      {At::Compared, false, true, false},
      {At::Compared, false, true, true},
  };
  // clang-format on
  for (const Row& row : rows) {
    const bool hasMemory = row.at == At::MemoryLine || row.at == At::Compared;
    AurexOsFixture fixture(Plc("K220-22-R1", hasMemory ? "3.73" : "4.60"));
    fixture.Put();
    int lines = 0;
    int compared = 0;
    bool isBack = false;
    fixture.desk.onMemoryLine = [&] {
      if (++lines == 100 && row.at == At::MemoryLine) fixture.pacer.RequestStop();
    };
    fixture.desk.onProgress = [&](std::int64_t current, std::int64_t) {
      if (row.at == At::SecondChunk && current == 2) fixture.pacer.RequestStop();
    };
    fixture.controller->onText = [&](std::string_view text, const sim::TextReply&) {
      if (row.at == At::Reset && text == "CCE") fixture.pacer.RequestStop();
      isBack = isBack || text.starts_with("ED");
    };
    fixture.controller->onBlock = [&](const sim::BlockRequest& request, const sim::BlockReply&) {
      const bool reads = row.at == At::Compared && isBack && request.opCode == BlockOperation::kMemory;
      if (reads && ++compared == 5) fixture.pacer.RequestStop();
    };
    fixture.desk.declined = row.isMeant ? "" : "Stop it all the same?";
    fixture.order.isDryRun = row.isDryRun;
    fixture.order.asksBeforeStop = row.asks;
    std::optional<DownloadPreview> preview;
    fixture.order.onPreview = [&](const DownloadPreview& shown) { preview = shown; };
    (void)fixture.Download();
    EXPECT_EQ(fixture.controller->told.empty(), row.isDryRun);
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->then.os, "4.75 (B03)");
    EXPECT_EQ(preview->then.fonts, "1.30 (B0)");
  }
}

#ifndef _WIN32
TEST(AurexOsSending, ClonesBeforeItGoOnADiskWithRoom) {
  for (const bool isFull : {false, true}) {
    AurexOsFixture fixture(Plc("K220-22-R1", isFull ? "3.73" : "4.60"));
    fixture.Put();
    const std::filesystem::path file = fixture.home.Path() / "before.kdf";
    BackupBefore backup(file, {fixture.desk, fixture.desk, fixture.desk, fixture.pacer, fixture.pacer});
    if (!isFull) fixture.order.backup = &backup;
    std::string clones;
    fixture.order.onPreview = [&](const DownloadPreview& preview) { clones = AmountText(preview); };
    std::optional<FullDisk> full;
    if (isFull) full.emplace();
    EXPECT_EQ(fixture.Download(), !isFull) << fixture.outcome.reason;
    EXPECT_THAT(clones, HasSubstr(isFull ? "goes over it 3 times" : "goes over it 2 times"));
    EXPECT_EQ(fixture.outcome.cause, isFull ? DownloadCause::Backup : DownloadCause::None);
    EXPECT_EQ(fixture.outcome.left, isFull ? ControllerLeft::Untouched : ControllerLeft::NewOs);
    EXPECT_EQ(std::filesystem::exists(file), !isFull);
    EXPECT_EQ(std::ranges::count(fixture.controller->told, "CCB"), isFull ? 0 : 1);
  }
}
#endif

}  // namespace
}  // namespace kv::test
