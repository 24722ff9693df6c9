#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Help, BeginsWithExamplesAndGoesToStandardOutput) {
  CommandFixture fixture;
  for (const char* verb : {"identify", "online", "read", "write", "regions", "watch", "clone", "download", "run",
                           "stop", "sessions", "ports"}) {
    const Result result = fixture.Run(verb + std::string(" --help"));
    const std::string examples = result.out.substr(0, result.out.find("\n\n"));
    EXPECT_THAT(examples, Not(HasSubstr("--password "))) << "others see it in the list of processes";
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, StartsWith("Examples:\n  kvtele "));
    EXPECT_THAT(result.out, HasSubstr(std::string("Usage: kvtele ") + verb));
  }
  EXPECT_THAT(fixture.Run("--help").out, StartsWith("Examples:\n  kvtele "));
  EXPECT_THAT(fixture.Run("--version").out, ::testing::MatchesRegex("kvtele \\w+\\.\\w+\\.\\w+\n"));
}

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
