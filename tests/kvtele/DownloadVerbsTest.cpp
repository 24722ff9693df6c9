#include <gmock/gmock.h>

#include "tests/download/Samples.h"
#include "tests/kvtele/CommandFixture.h"

namespace kv::test {
namespace {

using ::testing::HasSubstr;

struct DownloadVerbs : ::testing::Test {
  CommandFixture fixture;

  DownloadVerbs() { PutDownloadFiles(fixture.home.Path()); }
};

// Whether commands or block messages went out that change something, in either family.
bool HasChanges(const std::string& trace) {
  constexpr const char* kCommands[] = {"CCB", "CCS",  "CCE",  "CCM", "CCR", "FS05", "OSE", "OSC", "OSP",
                                       "FW",  "CB0A", "CPSR", "WD",  "WO",  "DE",   "LN",  "LD",  "PV"};
  constexpr const char* kMessages[] = {"project", "program", "download data", "transfer"};
  const auto block = trace.substr(std::min(trace.find(": block "), trace.size()));
  return std::ranges::any_of(kCommands, [&](const std::string& each) { return trace.contains("/01" + each); }) ||
         std::ranges::any_of(kMessages, [&](const char* each) { return block.contains(each); });
}

// Neither into one that runs its boot loader, nor when everything is consented to beforehand.
TEST_F(DownloadVerbs, AnOsGoesIntoNoControllerButItsOwn) {
  std::vector<std::string> files = {"hall.dai", "hall.d50"};
  for (const char* name : {"K220-22-R1", "K220-32", "K330", "Q50", "Q51", "Q58", "PX1", "PR1"}) {
    const sim::OsVersion os{name[0] == 'K' ? "4.75" : "4.71", 2};
    files.push_back(sim::OsFileName(ModelCalled(name), os));
    fixture.home.Put(files.back(), SampleOs(name, os));
  }
  for (const sim::Model& model : sim::AllModels()) {
    const std::string name(model.name);
    const bool isAurex = model.UnderstandsBlocks() && !model.HasColour();
    fixture.home.Put("AurexFontv1300.kft", SampleFonts(isAurex ? name : "K330", {"1.30", 0}));
    for (const bool boot : {false, true}) {
      fixture.options.boot = boot;
      fixture.ReplaceController(name);
      int done = 0;
      for (const std::string& file : files) {
        SCOPED_TRACE(name + " " + file + (boot ? " in boot" : ""));
        const bool hasFonts = isAurex || file.ends_with(".kos");
        const std::string given = " --file @" + file + (hasFonts ? " --fonts @AurexFontv1300.kft" : "");
        const std::string yes = "--yes --password 1 download ";
        const Result result = fixture.On("'" + name + "'", yes + "os --lose-project --lose-values" + given);
        if (result.exit == 0) {
          ++done;
          fixture.ReplaceController(name);
          EXPECT_THAT(file, HasSubstr(isAurex ? "Aurex" + std::string(model.osModel) : std::string(model.osModel)));
          continue;
        }
        EXPECT_EQ(result.exit, 4) << result.err;
        EXPECT_FALSE(HasChanges(result.trace)) << result.trace;
      }
      EXPECT_EQ(done, model.HasColour() ? 0 : 1) << name;
    }
  }
}

}  // namespace
}  // namespace kv::test
