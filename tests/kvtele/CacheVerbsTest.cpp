#include <gmock/gmock.h>

#include <filesystem>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

TEST(CacheVerb, DrawsTheSamePictureWithoutAskingForMore) {
  CommandFixture fixture;
  ASSERT_EQ(fixture.On("K670", "--session Default --yes cache import @a.ktc").exit, 0);
  EXPECT_TRUE(std::filesystem::exists(fixture.home.Path() / "Sessions/Default/tmpfile.ktc"));
  ASSERT_EQ(fixture.On("K670", "screen --png @full.png --fetch").exit, 0);
  const Result drawn = fixture.On("K670", "screen --png @cached.png --cache @a.ktc");
  EXPECT_THAT(drawn.trace, Not(HasSubstr("directory"))) << "the description alone tells that the cache is current";
  const auto picture = [&](const char* name) { return TemporaryFolder::Content(fixture.home.Path() / name); };
  EXPECT_EQ(picture("cached.png"), picture("full.png"));
}

}  // namespace
}  // namespace kv::test
