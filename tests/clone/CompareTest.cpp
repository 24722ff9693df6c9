#include <gmock/gmock.h>

#include "clone/CloneDiff.h"
#include "clone/CloneFrame.h"
#include "clone/CloneVerify.h"
#include "tests/clone/CloneFixture.h"

namespace kv::test {
namespace {

using testing::HasSubstr;
using Ranges = std::vector<AddressRange>;

// A clone of a controller with erased stretches in flash and RAM, made by the engine.
struct CompareTest : testing::Test, CloneFixture {
  std::filesystem::path Clone(const std::string& name) {
    file = folder.Path() / name;
    channel.state = 'S';
    prompts.Enter("x");
    prompts.Press(PromptAnswer::Ok);
    EXPECT_EQ(Create().end, CloneEnd::Done);
    return file;
  }
  void SetUp() override {
    channel.SetSegments({"HWF00001000 00003002", "OPR00008000 00002382", "FTF0000C000 00000400"});
    byteBefore = channel.byteAt = [](std::uint32_t address) -> std::uint8_t {
      const bool isErased = address < 0x1080 || (address >= 0x1F00 && address < 0x2200) || address >= 0xA380;
      return isErased ? 255 : static_cast<std::uint8_t>(address * 7);
    };
  }
  // The controller's bytes of these addresses become others.
  void Change(std::uint32_t first, std::uint32_t last) {
    channel.byteAt = [before = channel.byteAt, first, last](std::uint32_t address) -> std::uint8_t {
      const std::uint8_t byte = before(address);
      return address >= first && address <= last ? static_cast<std::uint8_t>(byte ^ 0x10) : byte;
    };
  }
  std::function<std::uint8_t(std::uint32_t)> byteBefore;
};

TEST_F(CompareTest, VerifyFindsEachDifferenceByItsAddressesAndOnlyReads) {
  const auto clone = Clone("a.kdf");
  channel.calls.clear();
  const auto same = VerifyClone(channel, clone);
  ASSERT_TRUE(same);
  EXPECT_TRUE(same->IsSame());
  EXPECT_EQ(same->segments.size(), 3U);
  EXPECT_EQ(channel.calls.front(), "Read 00001000 4096");
  EXPECT_EQ(channel.calls.size(), 4U + 3U + 1U);

  Change(0x1000, 0x1000);  // in an erased line that the file leaves out
  Change(0x20FF, 0x2100);
  Change(0x1FFF, 0x2000);  // on the border of two reads
  Change(0x4001, 0x4001);  // the last byte of a segment
  Change(0x9FFE, 0xA380);
  const auto other = VerifyClone(channel, clone);
  ASSERT_TRUE(other);
  EXPECT_EQ(other->segments[0].differing.Ranges(),
            (Ranges{{0x1000, 0x1000}, {0x1FFF, 0x2000}, {0x20FF, 0x2100}, {0x4001, 0x4001}}));
  EXPECT_EQ(other->segments[1].differing.Ranges(), (Ranges{{0x9FFE, 0xA380}}));
  EXPECT_EQ(VerdictsByKind(*other)[0].Text(), "Program and settings (HW, FT): 6 bytes differ.");
  EXPECT_THAT(VerdictsByKind(*other)[1].Text(), HasSubstr("(OP): 899 bytes differ; a running program"));
  EXPECT_EQ(CodesOf(*InspectClone(clone), ComparedKinds::Values), std::vector<std::string>{"OP"});
}

TEST_F(CompareTest, NothingDamageSilenceAndAStopAreNeverTheSame) {
  const auto clone = Clone("a.kdf");
  const std::string content = Content();
  const std::string head = content.substr(0, content.find('\n', content.find('\n') + 1) + 1);
  const auto empty = folder.Put("empty.kdf", head + "\r\n\r\n" + BuildEndFrame(0x1F) + "\r\n");
  const auto cut = folder.Put("cut.kdf", content.substr(0, content.find("/1FED")));
  ASSERT_TRUE(InspectClone(empty)->IsSound());
  channel.calls.clear();
  EXPECT_THAT(VerifyClone(channel, empty).error().reason, HasSubstr("nothing to compare"));
  EXPECT_FALSE(VerifyClone(channel, clone, {}, {"AP"}));
  EXPECT_FALSE(DiffClones(empty, empty));
  EXPECT_THAT(VerifyClone(channel, cut).error().reason, HasSubstr("the file has been cut"));
  EXPECT_EQ(DiffClones(clone, cut).error().cause, CloneCause::File);
  EXPECT_TRUE(channel.calls.empty());
  channel.exchanges = 0;
  channel.failAt = 3;
  EXPECT_EQ(VerifyClone(channel, clone).error().link.code, LinkErrorCode::NoReply);
  std::uint64_t reported = 0;
  const CloneWork work{[&] { return reported > 9000; },
                       [&](std::string_view, std::uint64_t done, std::uint64_t) { reported = done; }};
  EXPECT_EQ(VerifyClone(channel, clone, work).error().end, CloneEnd::Stopped);
}

TEST(AddressRanges, KeepsAFewAndCountsAll) {
  AddressRanges ranges;
  for (std::uint32_t address = 0; address < 5000; address += 2) ranges.Add(address, 1);
  ranges.Add(4999, 1);
  EXPECT_EQ(ranges.Ranges().size(), AddressRanges::kMost);
  EXPECT_EQ(ranges.RangeCount(), 2500U);
  EXPECT_EQ(ranges.Bytes(), 2501U);
}

}  // namespace
}  // namespace kv::test
