// What is sent of an O/S to an Aurex controller, and what its answers do.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"

namespace kv::test {
namespace {

using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kStop = "PLC STOP & RESET: O/S download is done via the Aurex's COM port 1. ";
constexpr const char* kStopQuestion = "Stop it all the same?";
constexpr const char* kReset = "Reset PLC: The controller is about to restart";

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
}

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
  // Its own O/S once more; the power fails just before it is told to program that, and its refusal is lost.
  const Falsify failsWithTheSame = [](AurexOsFixture& fixture) {
    fixture.Put({"4.60", 19}, {"1.30", 0}, 200);
    fixture.desk.choice = {fixture.folder / "AurexK220v46019.kos", fixture.folder / "AurexFontv1300.kft"};
    fixture.UseFaults({"reset:on=block,nth=12", "lost:dir=in,on=block,nth=13,away=1000"});
  };
  struct Row {
    const char* what;
    Falsify falsify;
    const char* box;  // after the question; empty: none
    DownloadCause cause;
    ControllerLeft left;
  };
  const Row rows[] = {
      {"never idle", status(2, 'P'), "Telepanel: ERR_NUM_FLASH_AND_MEMORY_NOT_IDLE", DownloadCause::Reply,
       ControllerLeft::BootLoader},
      {"no status", status(0, 'X'), "Telepanel: ERR_NUM_FLASH_AND_MEMORY_NOT_IDLE", DownloadCause::Reply,
       ControllerLeft::BootLoader},
      {"flash error", status(1, 1), "Telepanel: ERR_NUM_FLASH_ERROR", DownloadCause::Reply, ControllerLeft::BootLoader},
      {"topic not valid", status(9, 0), "Telepanel: ERR_NUM_INVALID_TOPIC_FROM_PLC", DownloadCause::Reply,
       ControllerLeft::BootLoader},
      {"busy", answered(65, 5),
       "Telepanel: The PLC is currently busy processing download tasks. Please wait a few minutes before re-attempting "
       "this operation.",
       DownloadCause::Reply, ControllerLeft::BootLoader},
      {"a status that means nothing", answered(65, 77), "Telepanel: Failed to send data chunk.", DownloadCause::Reply,
       ControllerLeft::BootLoader},
      {"69 is refused", answered(69, 143), "Telepanel: Failed to send data chunk.", DownloadCause::Reply,
       ControllerLeft::BootLoader},
      {"it reports the old O/S", thenSays("ID", "IDK220-22-R1|10|4.60|19"), kReset, DownloadCause::Unproven,
       ControllerLeft::OldOs},
      {"it reports another build", thenSays("ID", "IDK220-22-R1|10|4.75|07"), kReset, DownloadCause::Unproven,
       ControllerLeft::SomeOs},
      {"it reports no number", thenSays("ID", "IDK220-22-R1|10|x.y|"), kReset, DownloadCause::Unproven,
       ControllerLeft::SomeOs},
      {"it reports another model", thenSays("ID", "IDK220-22-R2|10|4.75|03"), kReset, DownloadCause::Unproven,
       ControllerLeft::NewOs},
      {"it does not restart", doesNotRestart, kReset, DownloadCause::Unproven, ControllerLeft::OsWaits},
      {"it has the same number as before", failsWithTheSame, "Telepanel: PLC does not respond.", DownloadCause::Link,
       ControllerLeft::SomeOs},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    AurexOsFixture fixture;
    fixture.Put();
    row.falsify(fixture);
    fixture.pacer.SetLocalTime(std::chrono::local_days{std::chrono::year{2026} / 3 / 9} - std::chrono::minutes(2));
    const Instant start = fixture.pacer.Now();
    EXPECT_FALSE(fixture.Download());
    EXPECT_THAT(fixture.desk.said, ElementsAre(kStop, row.box));
    EXPECT_EQ(fixture.outcome.cause, row.cause) << fixture.outcome.reason;
    EXPECT_EQ(fixture.outcome.left, row.left) << fixture.outcome.reason;
    if (std::string_view(row.box).ends_with("NOT_IDLE")) {
      EXPECT_GT(fixture.pacer.Now() - start, seconds(300));
      EXPECT_LT(fixture.pacer.Now() - start, seconds(302));
    }
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
  EXPECT_THAT(fixture.desk.said.back(), HasSubstr("the controller's program does not (state S)"));
}

TEST(AurexOsSending, SendsNothingOfFilesThatAreNotTheOnesThatWereShown) {
  using std::filesystem::path;
  struct Row {
    const char* what;
    std::function<void(const path& os, const path& fonts)> before;
    std::function<void(const path& os, const path& fonts)> whileAsked;
    std::vector<std::string> said;  // how the boxes begin
  };
  const auto cutTo = [](const path& file, std::size_t size) {
    PutFile(file, TemporaryFolder::Content(file).substr(0, size));
  };
  const auto nothing = [](const path&, const path&) {};
  const std::string k330Fonts = SampleFonts("K330", {"1.30", 0});
  const std::string otherOs = SampleOs("K220-22-R1", {"4.75", 3}, 2000);
  const Row rows[] = {
      {"fonts of 15 bytes",
       [&](const path&, const path& f) { cutTo(f, 15); },
       nothing,
       {kStop, "Error: Illegal Fonts file"}},
      {"fonts that are cut",
       [&](const path&, const path& f) { cutTo(f, 100); },
       nothing,
       {kStop, "Error: Illegal Fonts file"}},
      {"fonts of another model",
       [&](const path&, const path& f) { PutFile(f, k330Fonts); },
       nothing,
       {kStop, "Error: Illegal Fonts file"}},
      {"an O/S that is cut", [&](const path& os, const path&) { cutTo(os, 1000); }, nothing, {"Telepanel: "}},
      {"no O/S", [](const path& os, const path&) { std::filesystem::remove(os); }, nothing, {}},
      {"no fonts", [](const path&, const path& f) { std::filesystem::remove(f); }, nothing, {}},
      {"another O/S of the same name", nothing, [&](const path& os, const path&) { PutFile(os, otherOs); }, {kStop}},
      {"fonts that vanish", nothing, [](const path&, const path& f) { std::filesystem::remove(f); }, {kStop}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    AurexOsFixture fixture;
    fixture.Put();
    const path os = fixture.folder / "AurexK220v47503.kos";
    const path fonts = fixture.folder / "AurexFontv1300.kft";
    row.before(os, fonts);
    fixture.desk.onBox = [&](const MessageBox&) { row.whileAsked(os, fonts); };
    EXPECT_FALSE(fixture.Download());
    EXPECT_EQ(fixture.outcome.cause, DownloadCause::File);
    EXPECT_EQ(fixture.outcome.left, ControllerLeft::Untouched);
    EXPECT_NE(fixture.outcome.reason, "");
    EXPECT_THAT(fixture.controller->told, IsEmpty());
    ASSERT_EQ(fixture.desk.said.size(), row.said.size());
    for (std::size_t i = 0; i < row.said.size(); ++i) EXPECT_TRUE(fixture.desk.said[i].starts_with(row.said[i]));
  }
}

TEST(AurexOsSending, StopsOnlyWhenTheUserKnowsWhatIsLeft) {
  enum class At { SecondChunk, Reset, MemoryLine };
  struct Row {
    At at;  // where the stop comes
    bool isDryRun;
    bool asks;
    bool isMeant;  // the answer to the question about the stop
    DownloadEnd end;
    ControllerLeft left;
  };
  const Row rows[] = {
      {At::SecondChunk, true, true, false, DownloadEnd::WouldGoOn, ControllerLeft::Untouched},
      {At::SecondChunk, false, true, false, DownloadEnd::Done, ControllerLeft::NewOs},
      {At::SecondChunk, false, true, true, DownloadEnd::Stopped, ControllerLeft::BootLoader},
      {At::SecondChunk, false, false, false, DownloadEnd::Stopped, ControllerLeft::BootLoader},
      {At::MemoryLine, false, true, false, DownloadEnd::Done, ControllerLeft::NewOs},
      {At::Reset, false, true, false, DownloadEnd::Done, ControllerLeft::NewOs},
      {At::Reset, false, true, true, DownloadEnd::Stopped, ControllerLeft::NewOs},
      {At::MemoryLine, false, true, true, DownloadEnd::Stopped, ControllerLeft::NewOsLoading},
  };
  for (const Row& row : rows) {
    AurexOsFixture fixture(Plc("K220-22-R1", row.at == At::MemoryLine ? "3.73" : "4.60"));
    fixture.Put();
    int lines = 0;
    fixture.desk.onMemoryLine = [&] {
      if (++lines == 100) fixture.pacer.RequestStop();
    };
    fixture.desk.onProgress = [&](std::int64_t current, std::int64_t) {
      if (row.at == At::SecondChunk && current == 2) fixture.pacer.RequestStop();
    };
    fixture.controller->onText = [&](std::string_view text, const sim::TextReply&) {
      if (row.at == At::Reset && text == "CCE") fixture.pacer.RequestStop();
    };
    fixture.desk.declined = row.isMeant ? "" : kStopQuestion;
    fixture.order.isDryRun = row.isDryRun;
    fixture.order.asksBeforeStop = row.asks;
    std::optional<DownloadPreview> preview;
    fixture.order.onPreview = [&](const DownloadPreview& shown) { preview = shown; };
    (void)fixture.Download();
    EXPECT_EQ(fixture.outcome.end, row.end) << fixture.outcome.reason;
    EXPECT_EQ(fixture.outcome.left, row.left);
    const auto isStop = [](const MessageBox& box) { return box.text.contains(kStopQuestion); };
    EXPECT_EQ(std::ranges::any_of(fixture.desk.boxes, isStop), row.asks && !row.isDryRun);
    EXPECT_EQ(fixture.controller->told.empty(), row.isDryRun);
    EXPECT_EQ(fixture.outcome.reason.contains("Memory of "), row.left == ControllerLeft::NewOsLoading);
    ASSERT_TRUE(preview);
    EXPECT_EQ(preview->then.os, "4.75 (B03)");
    EXPECT_EQ(preview->then.fonts, "1.30 (B0)");
  }
}

}  // namespace
}  // namespace kv::test
