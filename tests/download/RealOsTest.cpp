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

TEST(RealOs, GoesIntoAnAurexControllerBehindAProject) {
  for (const Transport transport : matrix::kRealLines) {
    matrix::RealFixture fixture(transport);
    const std::filesystem::path folder = fixture.folder.Path() / "Os Aurex" / "K220";
    PutFile(folder / "AurexK220v47503.kos", SampleOs("K220-22-R1", {"4.75", 3}));
    PutFile(folder / "AurexFontv1300.kft", SampleFonts("K220-22-R1", {"1.30", 0}));
    const auto file = fixture.folder.Put("hall.dai", SampleProject("K220-22-R1"));
    ASSERT_TRUE(fixture.Serve({"--model", "K220-22-R1", "--restart-time", "0"}));
    Channel* link = fixture.Link();
    ASSERT_NE(link, nullptr);
    Desk desk;
    ProjectDownload project(desk, desk, fixture.pacer);
    project.Download(*link, *ReadProject(file, false), {});
    EXPECT_EQ(project.Outcome().left, ControllerLeft::NewProject) << OutcomeText(project.Outcome());
    const PacerWallClock clock;
    const ProgramPaths paths(fixture.folder.Path());
    clsAurexOSDownloader engine(desk, {desk, desk, desk, fixture.pacer, clock}, paths);
    EXPECT_TRUE(engine.DownloadOS(*link, {})) << OutcomeText(engine.Outcome());
    EXPECT_EQ(engine.Review()->after.os.value_or("") + engine.Review()->after.project.value_or(""), "4.75 (B03)Hall 7");
  }
}

}  // namespace
}  // namespace kv::test
