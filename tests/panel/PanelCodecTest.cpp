#include <gmock/gmock.h>

#include "KvCmDrv1/ChangeGate.h"
#include "KvCmDrv1/FrameMeaning.h"
#include "KvCmDrv1/wire/AsciiCodec.h"
#include "KvCmDrv1/wire/BlockCodec.h"
#include "KvCmDrv1/wire/PanelCodec.h"
#include "KvCmDrv1/wire/Requests.h"
#include "link/BlockOperations.h"
#include "tests/panel/Records.h"
#include "tests/support/Recorded.h"

namespace kv {
namespace {

using namespace std::string_literals;
using test::Byte;
using test::Words;

const PanelEvent kTap{.action = PanelAction::Tap,
                      .key = 3,
                      .x = 0x0102,
                      .y = 0x0304,
                      .seen = {0xBBAA, 0x04030201},
                      .page = 5,
                      .stamp = 0x0D0C0B0A,
                      .lease = 0x7766,
                      .since = 0x04030200,
                      .most = 200};

TEST(PanelCodec, RequestsAreTheBytesOfThePage) {
  EXPECT_EQ(EncodeChangesRequest({.have = {0x0201, 0x06050403}, .most = 0x0807, .lease = 0x0A09}),
            "\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A");
  const std::string tap =
      "\x06\x03\xAA\xBB\x01\x02\x03\x04\x0A\x0B\x0C\x0D\x05\x00\x66\x77\x02\x01\x04\x03\xC8\x00\x00\x02\x03\x04"s;
  EXPECT_EQ(EncodeEvent(kTap), tap);
  PanelEvent operate = kTap;
  operate.action = PanelAction::Operate;
  operate.takesOver = true;
  operate.operatorName = "Anna, who has a name of more";
  EXPECT_EQ(EncodeEvent(operate), "\x01\x01" + tap.substr(2) + "Anna, who has a name");
  operate = kTap;
  operate.key.reset();
  EXPECT_EQ(EncodeEvent(operate).substr(0, 2), "\x06\xFF");
}

const std::string kDescription =
    Byte(1) + Byte(2) + Words({16, 2, 4, 0, 0, 0, 0}) + "\x03\x00\x02"s + "F1\x07\xFF\x0C"s + "Twelve marks";
const std::string kHead = Words({9, 2, 0, 0x1234, 0, 5}) + Byte(0x09) + Byte(6) + Words({77});
const std::string kRecord = Words({768}) + Byte(3) + Byte(3) + "abc";

TEST(PanelCodec, RepliesAreReadAndWhatDoesNotKeepToThePageIsRefused) {
  const auto panel = ReadPanelDescription(kDescription);
  ASSERT_TRUE(panel);
  EXPECT_EQ(*panel, (PanelDescription{.kind = PanelKind::Text,
                                      .width = 16,
                                      .height = 2,
                                      .pages = 4,
                                      .keys = {{3, 0, "F1"}, {7, std::nullopt, "Twelve marks"}}}));
  const auto changes = ReadPanelChanges(kHead + kRecord);
  ASSERT_TRUE(changes);
  EXPECT_EQ(changes->upTo, (PanelRevision{9, 2}));
  EXPECT_EQ(changes->stamp, 0x1234U);
  EXPECT_EQ(changes->page, 5);
  EXPECT_TRUE(changes->hasMore && changes->isLeaseGood && !changes->beginsAnew);
  EXPECT_EQ(changes->verdict, PanelVerdict::NothingHeld);
  EXPECT_EQ(changes->lease, 77);
  ASSERT_EQ(changes->records.size(), 1U);
  EXPECT_EQ(changes->records[0].body, "abc");

  const auto isDescription = [](const std::string& bytes) { return ReadPanelDescription(bytes).has_value(); };
  test::ExpectAsRecorded([&] { return test::WhatIsTaken(kDescription, isDescription); });
  const auto isChanges = [](const std::string& bytes) { return ReadPanelChanges(bytes).has_value(); };
  test::ExpectAsRecorded([&] { return test::WhatIsTaken(kHead + kRecord, isChanges); });
  EXPECT_FALSE(ReadPanelChanges(kHead + kRecord + kRecord)) << "a slot twice";

  const std::string entry = Words({7, 100, 0, 0x5678, 0x1234}) + "Arial 16" + std::string(24, '\0');
  const auto part = ReadPanelDirectory(Words({2}) + entry);
  ASSERT_TRUE(part);
  EXPECT_EQ(part->countOfAll, 2);
  EXPECT_EQ(part->entries.at(0), (PanelResource{7, 100, 0x12345678, "Arial 16"}));
  const auto isDirectory = [](const std::string& bytes) { return ReadPanelDirectory(bytes).has_value(); };
  test::ExpectAsRecorded([&] { return test::WhatIsTaken(Words({2}) + entry, isDirectory); });
}

TEST(PanelCodec, OfAReplyThatWasAskedForAgainOnlyTheHeadIsTaken) {
  const std::string digits =
      "0900020000003412000005000906"
      "4D00";
  const auto whole = ReadPanelText("PE0001" + digits, "PE", 1);
  ASSERT_TRUE(whole);
  EXPECT_FALSE(whole->isCut);
  const auto cut = ReadPanelText("PE0001" + digits + "10", "PE", 1);
  ASSERT_TRUE(cut);
  EXPECT_TRUE(cut->isCut);
  EXPECT_EQ(cut->data, whole->data);
  EXPECT_FALSE(ReadPanelText("PE0002" + digits, "PE", 1));
  EXPECT_FALSE(ReadPanelText("PC0001" + digits + "1", "PC", 1));
}

// Letting go never waits for a record, and a press never goes out without one.
TEST(PanelCodec, PressesAreChangesAndLettingGoIsNone) {
  const struct {
    PanelAction action;
    bool isChange;
    std::string meaning;
  } cases[] = {{PanelAction::Operate, true, "take over the panel"},
               {PanelAction::Leave, false, "end operating the panel"},
               {PanelAction::Down, true, "press and hold key 3 of the panel"},
               {PanelAction::Hold, false, "hold on to key 3 of the panel"},
               {PanelAction::Up, false, "let go of key 3 of the panel"},
               {PanelAction::Tap, true, "press key 3 of the panel"}};
  for (const auto& [action, isChange, meaning] : cases) {
    PanelEvent event = kTap;
    event.action = action;
    event.takesOver = action == PanelAction::Operate;
    const std::string data = EncodeEvent(event);
    RequestWriter writer;
    std::string frame;
    ASSERT_EQ(EncodeFrame(1, writer.Panel("PE", 1, 0x1234, data), frame), TextFault::None);
    EXPECT_EQ(MayChange(frame), isChange) << meaning;
    EXPECT_EQ(FrameMeaning(frame), "unit 1: " + meaning);
    std::string block;
    EncodeBlockRequest({.unit = 1, .fields = {.opCode = BlockOperation::kPanelEvent}, .payload = data}, block);
    EXPECT_EQ(MayChange(block), isChange) << meaning;
    EXPECT_THAT(FrameMeaning(block), ::testing::HasSubstr(meaning));
  }
}

}  // namespace
}  // namespace kv
