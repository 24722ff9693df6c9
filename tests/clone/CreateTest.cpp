#include <gmock/gmock.h>

#include "clone/CloneLines.h"
#include "tests/clone/CloneFixture.h"

// clang-format off: the tables are laid out by hand
namespace kv::test {
namespace {

using testing::HasSubstr;

constexpr const char* kCreated = "Box (i) Korvantis PLC Cloner: Clone File Created Successfully.";
constexpr const char* kAbout = "Box (?) Korvantis PLC Cloner: The PLC is about to STOP, Continue?";

std::string Times(int count, std::string_view text) {
  std::string all;
  while (count-- > 0) all += text;
  return all;
}

TEST(CreateGhost, WritesTheFileToTheByteAndAsksInTheSettledOrder) {
  CloneFixture fixture;
  fixture.channel.SetSegments({"HWF00001000 00000104", "ZZR00009000 00000010", "MMR00200000 00000208",
                             "OPR00300000 00000006", "DTR00400000 00000000"});
  fixture.channel.byteAt = [](std::uint32_t address) -> std::uint8_t {
    if (address >= 0x1080 && address < 0x1084) return static_cast<std::uint8_t>(address - 0x107F);
    if (address >= 0x1084 && address < 0x1100) return 0;
    constexpr std::uint8_t kRest[] = {0xA5, 0xFF, 0x00, 0x10};
    return address >= 0x1100 && address < 0x1104 ? kRest[address - 0x1100] : 255;
  };
  fixture.window.boxes.op = false;
  fixture.prompts.Enter("AB");
  fixture.prompts.Press(PromptAnswer::Yes);
  fixture.prompts.Press(PromptAnswer::Ok);
  fixture.folder.Put("clone.kdf", "an older clone");
  EXPECT_EQ(fixture.Create().end, CloneEnd::Done);
  EXPECT_EQ(fixture.Content(),
            "Korvantis Clone File:\tV100\t2026-03-09\t07:00:00\r\n"
            "K220-22-R1\t10\t4.60\t19\r\n"
            "HW,4096,260\tMM,2097152,520\tDT,4194304,0\t\r\n"
            "\r\n"
            "/1FWDF0000108080"
            "02010403" +
                Times(124, "00") +
                "53\r\r\n"
                "/1FWDF0000110004"
                "FFA5"
                "1000"
                "01\r\r\n"
                "/1FWDR0020000000" +
                Times(256, "FF") +
                "46\r\r\n"
                "/1FWDR0020010000" +
                Times(256, "FF") +
                "47\r\r\n"
                "/1FED00\r\r\n");
  EXPECT_EQ(fixture.prompts.Inputs().at(0).text, "Enter Password Up To 8 Chars");
}

// What the user answers: the password, the stop question when it is asked, and the box at the end.
void Answer(CloneFixture& fixture, std::optional<std::string> password, std::optional<PromptAnswer> stop = {}) {
  fixture.prompts.Enter(std::move(password));
  if (stop) fixture.prompts.Press(*stop);
  fixture.prompts.Press(PromptAnswer::Ok);
}

TEST(CreateGhost, EndsBeforeTheControllerIsTouchedWhenPasswordOrTableCannotBeUsed) {
  const std::string hw = "HWF0000100000000010";
  struct Row {
    std::optional<std::string> password, reply;
    CloneCause cause;
    std::string reason;
  };
  using enum CloneCause;
  const std::vector<Row> rows = {
      {"", {}, Password, "No password"}, {std::nullopt, {}, NoPassword, "was cancelled"},
      {"123456789", {}, Password, "more than 8"}, {"x", "GIERROR0797", Segments, "password is needed first (code 07)"},
      {"x", "GI0??", Password, "did not accept"}, {"x", "GI1??", Segments, "number of segments"},
      {"x", "GI10000??", Segments, "no segments"}, {"x", "GI1000G" + hw + "??", Segments, "number of segments"},
      {"x", "GI10002" + hw + "??", Segments, "length of 2 segments"},
      {"x", "GI10001" + hw + hw + "??", Segments, "length of 1 segments"},
      {"x", "GI1FFFF" + hw + "??", Segments, "length of 65535"},
      {"x", "GI10001HWF0000100000000O10??", Segments, "segment 1"}, {"x", "GI10001H\tF0000100000000010??", Segments, "printed"},
      {"x", "GI10001HWFFFFFFFF000000011??", Segments, "FFFFFFFF"},
      {"x", "GI10001MMR0000100000000201??", Segments, "MM has an odd length (513"}};
  for (const Row& row : rows) {
    CloneFixture fixture;
    if (row.reply) fixture.channel.reply = CommandReply{*row.reply};
    Answer(fixture, row.password);
    const CloneOutcome outcome = fixture.Create();
    EXPECT_EQ(outcome.cause, row.cause) << row.reason;
    EXPECT_THAT(outcome.reason, HasSubstr(row.reason));
    EXPECT_EQ(fixture.channel.calls.back(), kFailed);
    EXPECT_EQ(fixture.channel.exchanges, row.reply ? 2 : 1) << row.reason;
    EXPECT_FALSE(fixture.Exists()) << row.reason;
  }
  CloneFixture fixture;  // an odd segment that is not taken is no harm
  fixture.channel.SetSegments({"OPR00001000 00000201", "ZZR00002000 00000201", "HWF00003000 00000010"});
  fixture.window.boxes.op = false;
  Answer(fixture, "x", PromptAnswer::No);
  EXPECT_EQ(fixture.Create().end, CloneEnd::Done);
}

}  // namespace
}  // namespace kv::test
