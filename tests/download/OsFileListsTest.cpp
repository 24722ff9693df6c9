#include "download/OsFileLists.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <functional>

#include "Samples.h"
#include "desktop/console/ConsolePacer.h"
#include "download/CompactOsFile.h"
#include "download/FontsFile.h"
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

// What is no file is none, what cannot be read is listed by its name, and many are no wait.
TEST_F(OsFileLists, OfAFullFolderAreRightAndQuick) {
  struct Row {
    const char *folder, *name, *directory, *dangling, *first, *last;
    std::function<FileList()> list;
  };
  const Row rows[] = {
      {"Os Aurex/K330", "AurexK330v4{}.kos", "AurexK330v50000.kos", "AurexK330v50001.kos", "OS - V4.00 (B00)",
       "* OS - V4.09 (B99)", [this] { return ListAurexOsFiles(paths, "K330").os; }},
      {"Os Aurex/K330", "AFont{}v1200.kft", "AurexFontv1300.kft", "AurexFontv1310.kft", "FONTS - V1.20 (B0)",
       "* FONTS - V1.20 (B0)", [this] { return ListAurexOsFiles(paths, "K330").fonts; }},
      {"OS/OSPR", "PR1v{}.OSI", "PR1v9999.OSI", "PR1v9998.OSI", "O/S PR1 V0.00 (B00)", "* O/S PR1 V0.99 (B09)",
       [this] { return ListCompactOsFiles(paths, {.kind = CompactKind::PR1}); }}};
  for (const Row& row : rows) {
    const fs::path folder = home.Path() / row.folder;
    for (int i = 0; i < 1000; ++i) {
      std::string name = row.name;
      name.replace(name.find("{}"), 2, std::to_string(10000 + i).substr(1));
      Put(row.folder, name, "");
    }
    fs::create_directory(folder / row.directory);
    std::error_code ignored;  // some systems have no links for everybody
    fs::create_symlink(folder / "gone", folder / row.dangling, ignored);
    const ConsolePacer pacer;
    const Instant start = pacer.Now();
    const std::vector<std::string> texts = Texts(row.list());
    EXPECT_LT(pacer.Now() - start, std::chrono::seconds(2));
    ASSERT_EQ(texts.size(), 1000U);
    EXPECT_EQ(texts.front(), row.first);
    EXPECT_EQ(texts.back(), row.last);
  }
  EXPECT_FALSE(ReadFontsFile(home.Path() / "Os Aurex/K330/AFont0000v1200.kft")) << "of 0 bytes";
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
