// What of a cache a screen is drawn with: the controller's own fonts and images, and no others.

#include <gmock/gmock.h>

#include "KvTele2/cache/CacheDiff.h"
#include "KvTele2/cache/CacheScreen.h"
#include "base/Crc32.h"
#include "simulator/panel/Fonts.h"

namespace kv::cache {
namespace {

using ::testing::HasSubstr;

PanelResource EntryOf(std::uint16_t id, std::string_view bytes, std::string name) {
  return {.id = id, .length = static_cast<std::uint32_t>(bytes.size()), .check = Crc32(bytes), .name = std::move(name)};
}

TEST(CacheScreen, TakesWhatIsTheControllersOwnAndTellsTheRest) {
  CacheContent content{.owner = CacheOwner{.version = {.model = "K670"}}, .fonts = CachePart{}, .images = CachePart{}};
  ControllerDirectories directories{.fonts = PanelDirectory(), .images = PanelDirectory()};
  for (const sim::PanelFont& font : sim::PanelFonts()) {
    const PanelResource entry = EntryOf(font.id, font.data, std::string(font.name));
    content.fonts->push_back({.entry = entry, .bytes = std::string(font.data)});
    directories.fonts->entries.push_back(entry);
  }
  const std::uint16_t second = directories.fonts->entries[1].id;
  ++directories.fonts->entries[1].length;  // with the same CRC-32
  content.images->push_back({.entry = EntryOf(1, "no image", "logo"), .bytes = "no image"});
  directories.images->entries = {EntryOf(1, "no image", "logo"), EntryOf(2, "image", "")};

  panel::ScreenResources resources;
  const CacheFit fit = TakeFromCache(content, "K670", directories, resources);
  EXPECT_EQ(fit.taken, content.fonts->size() - 1);
  ASSERT_EQ(fit.gaps.size(), 3U);
  EXPECT_EQ(fit.gaps[0].reason, CacheGapReason::Outdated);
  EXPECT_EQ(resources.FontOf(second), nullptr);
  EXPECT_EQ(fit.gaps[1].reason, CacheGapReason::Unusable);
  EXPECT_EQ(fit.gaps[2].reason, CacheGapReason::Lacks);
  EXPECT_EQ(resources.NameOf(PanelResourceKind::Image, 1), "logo");
  EXPECT_THAT(FitText(fit, "a.ktc"), HasSubstr("3 fonts and images of the controller cannot be taken from a.ktc"));
  EXPECT_THAT(FitText(fit, "a.ktc"), HasSubstr("logo, Image 2."));

  const CacheFit other = TakeFromCache(content, "K330", directories, resources);
  EXPECT_TRUE(other.isOtherModel);
  EXPECT_EQ(resources.FontOf(directories.fonts->entries[0].id), nullptr) << "nor is what was there before";
  const CacheFit empty = TakeFromCache({}, "K670", directories, resources);
  EXPECT_EQ(empty.gaps.size(), directories.fonts->entries.size() + 2);

  PanelDescription panel{.kind = PanelKind::Colour, .fontsCheck = DirectoryCheck(*content.fonts)};
  EXPECT_TRUE(IsCurrent(content, PanelResourceKind::Font, panel));
  EXPECT_FALSE(IsCurrent(content, PanelResourceKind::Image, panel));
}

TEST(CacheDiff, TellsEachDifferenceOnce) {
  const PanelResource same = EntryOf(1, "a", "one");
  PanelResource renamed = EntryOf(2, "b", "two");
  std::vector<PanelResource> first = {same, renamed, EntryOf(3, "c", ""), EntryOf(4, "d", "")};
  renamed.name = "deux";
  const std::vector<PanelResource> second = {EntryOf(5, "e", "five"), renamed, same, EntryOf(3, "C", "")};
  using enum CacheDifferenceKind;
  std::vector<std::pair<int, CacheDifferenceKind>> found;
  for (const CacheDifference& one : Differences(PanelResourceKind::Image, first, second))
    found.emplace_back(one.id, one.how);
  EXPECT_THAT(found, testing::ElementsAre(std::pair(2, OtherName), std::pair(3, OtherBytes), std::pair(4, OnlyInFirst),
                                          std::pair(5, OnlyInSecond)));
}

}  // namespace
}  // namespace kv::cache
