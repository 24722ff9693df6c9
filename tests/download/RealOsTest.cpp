// An O/S into a compact controller that kvsim plays over a real pseudo terminal, on which it is deaf at all speeds but
// its own.

#include <gtest/gtest.h>

#include "CompactOsFixture.h"
#include "desktop/PacerWallClock.h"
#include "download/ProjectDownload.h"
#include "download/clsAurexOSDownloader.h"
#include "tests/matrix/RealFixture.h"

namespace kv::test {
namespace {

#ifndef _WIN32
TEST(RealOs, IsReplacedByTheSecondDownloadWhereTheFirstOneFailed) {
  matrix::RealFixture fixture(Transport::Serial);
  const auto file = fixture.folder.Put("Q58v4712.OSI", SampleOs("Q58", {"4.71", 2}));
  ASSERT_TRUE(fixture.Serve({"--model", "Q58", "--restart-time", "0", "--fault", "refuse:code=0D,on=OS,nth=8"}));
  for (const bool fails : {true, false}) {
    Channel* link = fixture.Link();  // at the usual speed
    ASSERT_NE(link, nullptr);
    Desk desk;
    clsBrioQ50OSDownloader engine(desk, desk, fixture.pacer, ProgramPaths(fixture.folder.Path()));
    engine.UseFile(file);
    EXPECT_EQ(engine.DownloadOS(*link, {}), !fails) << OutcomeText(engine.Outcome());
    EXPECT_EQ(engine.Outcome().left, fails ? ControllerLeft::BootLoaderErased : ControllerLeft::NewOs);
    fixture.driver.CloseDriver();
  }
  EXPECT_EQ(fixture.Link()->GetVersionInfo(1)->osVersion, "4.71");
}
#endif

}  // namespace
}  // namespace kv::test
