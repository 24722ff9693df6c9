#include "download/OsFileLists.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "Samples.h"
#include "download/CompactOsFile.h"
#include "download/OsFileName.h"
#include "tests/support/TemporaryFolder.h"

namespace kv::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

struct OsFileLists : testing::Test {
  void Put(const std::string& folder, const std::string& name, const std::string& content = "") const {
    PutFile(home.Path() / folder / name, content);
  }
  static std::vector<std::string> Texts(const FileList& list) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < list.files.size(); ++i) {
      texts.push_back((list.preselected == i ? "* " : "") + list.files[i].text);
    }
    return texts;
  }

  TemporaryFolder home;
  ProgramPaths paths{home.Path()};
};

TEST_F(OsFileLists, OfAnAurexControllerAreSortedByTheDigitsOfTheNames) {
  for (const char* name :
       {"AurexK330v46019.kos", "new AurexK330v47503.KOS", "AurexK330v47501.kos", "AurexK220v99999.kos", "notes.txt",
        "other.kos", "AurexFontv1300.kft", "AurexFontv1299.kft"}) {
    Put("Os Aurex/K330", name);
  }
  fs::create_directories(home.Path() / "Os Aurex/K330/AurexK330v48000.kos");
  const AurexOsLists lists = ListAurexOsFiles(paths, "K380-28");
  EXPECT_THAT(Texts(lists.os), ElementsAre("OS - V4.60 (B19)", "OS - V4.75 (B01)", "* OS - V4.75 (B03)",
                                           "OS - V9.99 (B99)", "OS - other.kos"));
  EXPECT_THAT(Texts(lists.fonts), ElementsAre("FONTS - V1.29 (B9)", "* FONTS - V1.30 (B0)"));
  EXPECT_EQ(lists.os.files[2].path.filename(), "new AurexK330v47503.KOS");

  for (const auto& [model, folder] :
       {std::pair("K220-22", "K220"), {"K220-32", "K222"}, {"K330", "K330"}, {"", "K330"}}) {
    EXPECT_EQ(ListAurexOsFiles(paths, model).os.folder, home.Path() / "Os Aurex" / folder);
  }
  EXPECT_TRUE(ListAurexOsFiles(paths, "K220-32").os.IsEmpty()) << "no such folder";
}

TEST_F(OsFileLists, OfACompactControllerHoldWhatItMayTake) {
  Put("OS/OS51", "Q51v4602.OSI", SampleOs("Q51", {"4.60", 2}));
  Put("OS/OS51", "Q51v4709.OSI", SampleOs("Q51", {"4.70", 9}, 200, ""));
  Put("OS/OS51", "q58v4715.osi", "damaged");
  for (const char* name : {"Q51vABCD.OSI", "Q51v46021.OSI", "Q50v4602.OSI", "Q51v4602.OSI.bak"}) Put("OS/OS51", name);
  const CompactController q51{.kind = CompactKind::Q51OrQ58};
  const CompactController q58{.kind = CompactKind::Q51OrQ58, .isQ58 = true};
  const CompactController boot{.kind = CompactKind::Q51OrQ58, .isInBoot = true};
  EXPECT_THAT(Texts(ListCompactOsFiles(paths, q51)),
              ElementsAre("O/S Q51 V4.60 (B02) (beta)", "* O/S Q51 V4.70 (B09)"));
  EXPECT_THAT(Texts(ListCompactOsFiles(paths, q58)), ElementsAre("* O/S Q58 V4.71 (B05)"));
  EXPECT_EQ(ListCompactOsFiles(paths, q58).files.front().detail, "Family code 58, display: Two Lines");
  EXPECT_EQ(CompactModelText("PX1"), "Family code BR, display: Two Lines");
  EXPECT_THAT(Texts(ListCompactOsFiles(paths, boot)),
              ElementsAre("O/S Q51 V4.60 (B02) (beta)", "* O/S Q51 V4.70 (B09)", "O/S Q58 V4.71 (B05)"));
  for (const auto& [kind, folder] :
       {std::pair(CompactKind::Q50, "OS50"), {CompactKind::PX1, "OSPX"}, {CompactKind::PR1, "OSPR"}}) {
    const FileList list = ListCompactOsFiles(paths, {.kind = kind});
    EXPECT_EQ(list.folder, home.Path() / "OS" / folder);
    EXPECT_TRUE(list.IsEmpty());
  }
}

TEST_F(OsFileLists, HoldFilesAlone) {
  for (const auto& [folder, name] : {std::pair("Os Aurex/K330", "AurexK330v50000.kos"),
                                     {"Os Aurex/K330", "AurexFontv1300.kft"},
                                     {"OS/OSPR", "PR1v9999.OSI"}}) {
    fs::create_directories(home.Path() / folder / name);
  }
  const auto aurex = ListAurexOsFiles(paths, "K330");
  EXPECT_TRUE(aurex.os.IsEmpty() && aurex.fonts.IsEmpty());
  EXPECT_TRUE(ListCompactOsFiles(paths, {.kind = CompactKind::PR1}).IsEmpty());
}

// The models that are simulated are tried with whole downloads.
TEST(CompactControllers, AreKnownByTheirIdentification) {
  struct Case {
    std::string data, osModel;
    bool isInBoot;
  };
  const Case cases[] = {{"Q50-2-R34|50|1.61|19", "Q50", false},
                        {"BQ58|58|1.61|19", "Q58", true},
                        {"BRIO-R16|16|1.61|1", "PX1", false},
                        {"BOOT|58|1.61|19", "Q58", true},
                        {"BOOT|33|4.60|19", "", false},
                        {"", "", false},
                        {"|||||", "", false}};
  for (const Case& wanted : cases) {
    SCOPED_TRACE(wanted.data);
    const auto controller = ParseCompactIdentification(wanted.data);
    ASSERT_EQ(controller.has_value(), !wanted.osModel.empty());
    if (!controller) continue;
    EXPECT_EQ(controller->OsModel(), wanted.osModel);
    EXPECT_EQ(controller->isInBoot, wanted.isInBoot);
    EXPECT_EQ(controller->osVersion, 161);
  }
  EXPECT_EQ(ParseCompactIdentification("Q50")->osVersion, 0);
}

}  // namespace
}  // namespace kv::test
