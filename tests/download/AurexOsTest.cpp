// The O/S of an Aurex controller: what is asked, what is sent, and what is left when it is cut.

#include <gmock/gmock.h>

#include "AurexOsFixture.h"

namespace kv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(AurexOs, EachVersionHasItsOwnQuestions) {
  struct Row {
    int installed;
    int next;
    bool changesBootLoader;
    bool losesDataTypes;
    bool savesMemory;
  };
  const Row rows[] = {
      {110, 110, false, false, false}, {110, 111, true, false, false},  {111, 112, false, false, false},
      {200, 201, true, false, false},  {201, 250, false, false, false}, {250, 251, true, false, false},
      {290, 291, true, false, false},  {291, 373, false, false, false}, {373, 374, true, false, true},
      {374, 475, false, false, false}, {300, 299, false, true, false},  {299, 298, false, false, false},
      {374, 373, false, true, false},  {373, 372, false, false, false}, {299, 374, true, true, true},
      {300, 374, true, false, true},   {109, 290, true, false, false},  {475, 460, false, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.installed) + " to " + std::to_string(row.next));
    const AurexOsChange change{row.installed, row.next, false};
    EXPECT_EQ(change.ChangesBootLoader(), row.changesBootLoader);
    EXPECT_EQ(change.LosesDataTypes(), row.losesDataTypes);
    EXPECT_EQ(change.NeedsMemorySaved(), row.savesMemory);
    EXPECT_EQ(change.RefusesFonts(129), row.next >= 374);
    EXPECT_FALSE(change.RefusesFonts(130));
    const AurexOsChange fromBoot{row.installed, row.next, true};
    EXPECT_TRUE(fromBoot.ChangesBootLoader() && fromBoot.LosesDataTypes() && !fromBoot.NeedsMemorySaved());
  }
}

TEST(AurexOs, EveryModelGetsItsOwnAndRefusesOthers) {
  for (const sim::Model& model : sim::AllModels()) {
    if (!model.UnderstandsBlocks() || model.HasColour()) continue;
    for (const bool boot : {false, true}) {
      for (const char* osModel : {"K220", "K222", "K330"}) {
        SCOPED_TRACE(std::string(model.name) + " gets " + osModel + (boot ? " in boot" : ""));
        AurexOsFixture fixture(std::string(model.name), "", boot);
        fixture.Put(osModel, {"4.75", 3}, {"1.30", 0});
        const auto folder = fixture.home.Path() / "Os Aurex" / osModel;
        fixture.desk.choice = {folder / ("Aurex" + std::string(osModel) + "v47503.kos"), folder / "AurexFontv1300.kft"};
        if (model.osModel == osModel) {
          EXPECT_TRUE(fixture.Download()) << fixture.outcome.reason;
          EXPECT_EQ(fixture.review->after.os, "4.75 (B03)");
          EXPECT_THAT(fixture.controller->Truth(),
                      testing::AnyOf(HasSubstr("|4.75|03|R"), HasSubstr("O/S 4.75;|B03;|R")));
        } else {
          EXPECT_FALSE(fixture.Download());
          EXPECT_EQ(fixture.outcome.end, DownloadEnd::Refused);
          EXPECT_THAT(fixture.desk.said, ElementsAre(HasSubstr("Telepanel: PLC Type: ")));
          EXPECT_THAT(fixture.controller->told, IsEmpty());
        }
      }
    }
  }
}

}  // namespace
}  // namespace kv::test
