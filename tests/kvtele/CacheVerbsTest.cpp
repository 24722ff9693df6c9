#include <gmock/gmock.h>

#include <filesystem>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(CacheVerb, ImportsAfterItsQuestionAndDrawsTheSamePicture) {
  CommandFixture fixture;
  fixture.input.lines = {{""}};
  const Result asked = fixture.On("K670", "cache import @a.ktc");
  EXPECT_EQ(asked.exit, 1) << "No is the default";
  EXPECT_THAT(asked.err, AllOf(HasSubstr("the PLC display enters 'SYSTEM mode'"), HasSubstr("serial number ")));
  EXPECT_THAT(asked.trace, Not(HasSubstr("SYSTEM mode")));
  const Result imported = fixture.On("K670", "--yes cache import @a.ktc");
  ASSERT_EQ(imported.exit, 0) << imported.err;
  EXPECT_THAT(imported.err, HasSubstr("a.ktc was successfully created from the PLC"));
  EXPECT_THAT(fixture.On("K670", "--json cache import @a.ktc").out, HasSubstr("\"bytesRead\": 0"));
  EXPECT_THAT(fixture.Run("cache info @a.ktc").out, AllOf(HasSubstr("fonts          4\n"), HasSubstr("Sans Bold 24")));
  EXPECT_EQ(fixture.On("K670", "cache diff @a.ktc").out, "No differences.\n");

  ASSERT_EQ(fixture.On("K670", "screen --png @full.png --fetch").exit, 0);
  const Result drawn = fixture.On("K670", "screen --png @cached.png --cache @a.ktc");
  EXPECT_THAT(drawn.err, Not(HasSubstr("framed"))) << drawn.err;
  const auto picture = [&](const char* name) { return TemporaryFolder::Content(fixture.home.Path() / name); };
  EXPECT_EQ(picture("cached.png"), picture("full.png"));
  EXPECT_THAT(drawn.trace, Not(HasSubstr("directory"))) << "the description alone tells that the cache is current";
  EXPECT_EQ(fixture.On("K660", "screen --png @no.png --cache @a.ktc").exit, 4) << "another model";

  ASSERT_EQ(fixture.On("K670", "--yes cache import @fonts.ktc --only fonts").exit, 0);
  const Result partial = fixture.On("K670", "screen --png @part.png --cache @fonts.ktc");
  EXPECT_THAT(partial.err, AllOf(HasSubstr("cannot be taken from"), HasSubstr("drawn as framed places")));
  EXPECT_THAT(fixture.Run("cache diff @a.ktc @fonts.ktc").out, HasSubstr("Image 7 (Pump) is only in "));
  EXPECT_EQ(fixture.Run("cache diff @a.ktc @fonts.ktc").exit, 5);
}

TEST(CacheVerb, ASessionsLinkMakesItTheSessionsCache) {
  CommandFixture fixture;
  ASSERT_EQ(fixture.On("K670", "--session Default --yes cache import @a.ktc").exit, 0);
  EXPECT_TRUE(std::filesystem::exists(fixture.home.Path() / "Sessions/Default/tmpfile.ktc"));
  EXPECT_THAT(fixture.On("K670", "--session Default screen --png @a.png").err, Not(HasSubstr("framed")));
  EXPECT_THAT(fixture.On("K670", "screen --png @a.png").err, HasSubstr("framed")) << "a link of nobody's session";
}

TEST(CacheVerb, RefusesAndRepairs) {
  CommandFixture fixture;
  ASSERT_EQ(fixture.On("K670", "--yes cache import @a.ktc").exit, 0);
  const std::string whole = TemporaryFolder::Content(fixture.home.Path() / "a.ktc");
  fixture.home.Put("cut.ktc", whole.substr(0, whole.size() / 2));
  fixture.home.Put("text.ktc", "a shopping list");
  const Result cut = fixture.Run("cache info @cut.ktc");
  EXPECT_EQ(cut.exit, 6);
  EXPECT_THAT(cut.out, AllOf(HasSubstr("its end is missing"), HasSubstr("4 fonts and ")));
  for (const char* line : {"cache info @text.ktc", "cache diff @cut.ktc", "screen --cache @cut.ktc"}) {
    EXPECT_EQ(fixture.On("K670", line).exit, 6) << line;
  }
  EXPECT_EQ(fixture.On("K670", "--yes cache import @cut.ktc").exit, 1) << "--yes is for the display";
  const Result repaired = fixture.On("K670", "--yes cache import @cut.ktc --replace");
  EXPECT_EQ(repaired.exit, 0) << repaired.err;
  EXPECT_THAT(repaired.out, Not(HasSubstr(", 0 kept")));
  EXPECT_EQ(fixture.Run("cache diff @a.ktc @cut.ktc").exit, 0);
  EXPECT_EQ(fixture.On("K220-22-R1", "--yes cache import @b.ktc").exit, 4);
  EXPECT_EQ(fixture.On("K670", "cache info @a.ktc --all").exit, 2);
  EXPECT_EQ(fixture.On("K670", "--yes cache import @no/such.ktc").exit, 6);
}

TEST(CacheVerb, StoppedLeavesTheFileAsItWas) {
  CommandFixture fixture;
  fixture.options.baud = 115200;
  fixture.home.Put("a.ktc", "my list");
  fixture.pacer.After(std::chrono::seconds(5), [&] { fixture.pacer.RequestStop(); });
  const Result stopped = fixture.On("K670", "--yes cache import @a.ktc --replace");
  EXPECT_EQ(stopped.exit, 130) << stopped.err;
  EXPECT_EQ(TemporaryFolder::Content(fixture.home.Path() / "a.ktc"), "my list");
  EXPECT_THAT(fixture.On("K670", "screen --json").out, HasSubstr("\"systemMode\": false"));
}

}  // namespace
}  // namespace kv::test
