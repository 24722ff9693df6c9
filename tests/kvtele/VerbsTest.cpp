// What the transcripts do not hold: what is equal, and what is the same on every system.

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

TEST(CloneVerbs, ASparePartWithAnotherUnitAndDataInAnErasedSegmentCanBeRestored) {
  CommandFixture fixture;
  const auto on = [&](const std::string& line) { return fixture.On("AurexQ50", "--password 1 " + line); };
  ASSERT_EQ(on("clone create @plc.kdf --stop").exit, 0);
  const std::string file = fixture.PathOf("plc.kdf");
  std::string content = TemporaryFolder::Content(file);
  for (std::size_t at = 0; (at = content.find("/01WDF0030")) != std::string::npos;) {
    content.erase(at, content.find('\n', at) + 1 - at);  // as if AP had been erased
  }
  fixture.home.Put("plc.kdf", content);
  const Result misfit = on("clone restore @plc.kdf --yes");
  EXPECT_EQ(misfit.exit, 4);
  EXPECT_THAT(misfit.err, HasSubstr("not as recorded: AP."));
  std::filesystem::remove(file + ".manifest");

  fixture.options.unit = 7;
  fixture.options.memorySeed = 2;
  fixture.ReplaceController("AurexQ50");
  const std::string restore = "--unit 7 clone restore @plc.kdf --yes --verify ";
  for (const char* forced : {"", "--force"}) {  // unit 1 may be a machine on the same line
    const Result refused = on(restore + forced);
    EXPECT_EQ(refused.exit, 4);
    EXPECT_THAT(refused.err, HasSubstr("--unit-from-controller"));
    EXPECT_THAT(refused.trace, Not(HasSubstr("WD")));
  }
  const Result differs = on(restore + "--unit-from-controller --backup @b.kdf --stop");
  EXPECT_EQ(differs.exit, 5) << differs.err;
  EXPECT_THAT(differs.err, HasSubstr("What the controller holds in AP stays"));
  EXPECT_THAT(differs.err, HasSubstr("--erase-empty erases it"));
  EXPECT_EQ(on(restore + "--unit-from-controller --erase-empty").exit, 0);
  EXPECT_EQ(TemporaryFolder::Content(file), content);

  EXPECT_EQ(on("--unit 7 clone restore @b.kdf --yes --verify").exit, 0);
}

}  // namespace
}  // namespace kv::test
