#include <gmock/gmock.h>

#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Screen, PrintsAndDrawsWhatTheDisplayShows) {
  CommandFixture fixture;
  const Result text = fixture.On("Q51", "screen");
  EXPECT_EQ(text.exit, 0) << text.err;
  EXPECT_THAT(text.out, AllOf(StartsWith("Line 1         READY\n"), HasSubstr("\n\nF1\tbutton \"Start\"\n")));
  EXPECT_THAT(fixture.On("Q51", "screen --text").out, Not(HasSubstr("\t")));
  const Result json = fixture.On("K670", "screen --json");
  EXPECT_THAT(json.out, AllOf(HasSubstr("\"display\": \"colour\",\n  \"width\": 800,\n  \"height\": 480,"),
                              HasSubstr("\"name\": \"Start\",\n      \"kind\": \"button\"")));
  const Result bare = fixture.On("K670", "screen --png @bare.png");
  EXPECT_THAT(bare.err, HasSubstr("fonts and images are missing"));
  EXPECT_EQ(bare.out, "");
  const Result full = fixture.On("K670", "screen --png @full.png --fetch --text");
  EXPECT_EQ(full.exit, 0) << full.err;
  EXPECT_THAT(full.err, Not(HasSubstr("missing")));
  EXPECT_THAT(full.out, HasSubstr("READY"));
  const std::string png = TemporaryFolder::Content(fixture.home.Path() / "full.png");
  EXPECT_THAT(png, StartsWith("\x89PNG\r\n"));
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x03\x20\0\0\x01\xE0", 8));
  EXPECT_NE(png, TemporaryFolder::Content(fixture.home.Path() / "bare.png"));
  EXPECT_EQ(fixture.On("K670", "screen --png @no/such.png").exit, 6);
  EXPECT_EQ(fixture.On("K670", "screen --count 2").exit, 2) << "without --watch";
  for (const char* line : {"screen", "press F1"}) {
    const Result none = fixture.On("BRIO", line);
    EXPECT_EQ(none.exit, 4);
    EXPECT_THAT(none.err, HasSubstr("the controller has no display"));
  }
}

TEST(Screen, FollowsWhatChangesAndOperatesNothing) {
  CommandFixture fixture;
  ASSERT_EQ(fixture.On("K670", "--yes press Start").exit, 0);
  const Result watched = fixture.On("K670", "screen --watch --text --count 3");
  EXPECT_EQ(watched.exit, 0) << watched.err;
  EXPECT_THAT(watched.out, HasSubstr("RUNNING"));
  EXPECT_THAT(watched.trace, Not(HasSubstr("panel: ")));
  EXPECT_THAT(watched.trace, Not(HasSubstr("panel event")));
  for (const char* bound : {"--count ", "--for "}) {
    for (const int least : {0, 1}) {
      const std::string line = "screen --watch " + (bound + std::to_string(least));
      EXPECT_EQ(fixture.On("K670", line).exit, least == 0 ? 2 : 0) << line;
    }
  }
  fixture.pacer.After(std::chrono::seconds(2), [&] { fixture.pacer.RequestStop(); });
  EXPECT_EQ(fixture.On("K670", "screen --watch --for 60").exit, 130);
}

TEST(Press, AsksNamesAndPressesOnce) {
  for (const char* model : {"K670", "K220-22-R1", "Q51"}) {
    SCOPED_TRACE(model);
    CommandFixture fixture;
    fixture.recordsChanges = true;
    const bool isColour = model == std::string("K670");
    const std::string start = isColour ? "682,288" : "f1";
    fixture.input.lines = {{""}};
    const Result asked = fixture.On(model, "press " + start);
    EXPECT_EQ(asked.exit, 1) << "No is the default";
    EXPECT_THAT(asked.err, AllOf(HasSubstr("serial number "), HasSubstr("button \"Start\""), HasSubstr("[y/N]")));
    EXPECT_THAT(fixture.On(model, "screen").out, HasSubstr("READY"));
    const Result pressed = fixture.On(model, "--yes press " + start);
    EXPECT_EQ(pressed.exit, 0) << pressed.err;
    EXPECT_THAT(pressed.err, HasSubstr("Pressed: button \"Start\""));
    EXPECT_THAT(fixture.On(model, "screen").out, HasSubstr("RUNNING"));
    EXPECT_THAT(fixture.On(model, "--yes --json press " + std::string(isColour ? "stop" : "F2")).out,
                HasSubstr("\"pressed\": \"button \\\"Stop\\\""));
    EXPECT_THAT(fixture.Run("journal list").out, AllOf(HasSubstr("kvtele press: operate the panel\tdone"),
                                                       HasSubstr("button \"Start\" on page 1\tdone")));
    for (const char* nothing : {"F9", "-", isColour ? "5,5" : "5"}) {
      const Result refused = fixture.On(model, std::string("--yes press -- ") + nothing);
      EXPECT_EQ(refused.exit, 4) << refused.err;
    }
  }
}

TEST(Press, NeedsThePasswordOfItsController) {
  CommandFixture fixture;
  fixture.options.password = "abc";
  EXPECT_EQ(fixture.On("K670", "--yes press Start").exit, 4) << "the password is needed";
  EXPECT_EQ(fixture.On("K670", "--yes --password abc press Start").exit, 0);
  EXPECT_THAT(fixture.On("K670", "screen").out, HasSubstr("RUNNING"));
}

}  // namespace
}  // namespace kv::test
