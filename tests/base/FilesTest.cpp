#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "base/ProgramFolders.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

namespace fs = std::filesystem;

TEST(SaveAtomically, ReplacesContentAndLeavesNothingElse) {
  const TemporaryFolder folder;
  const fs::path file = folder.Put("a.bin", "old and longer");
  const std::string content("new\0\r\n\xFF", 7);
  ASSERT_TRUE(SaveAtomically(file, content));
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_TRUE(SaveAtomically("b.bin", "")) << "beside a name without a folder";
  fs::current_path(before);
  EXPECT_EQ(TemporaryFolder::Content(file), content);
  EXPECT_EQ(folder.EntryCount(), 2);
}

#ifdef _WIN32
TEST(SaveAtomically, LeavesAFileThatAnotherProgramHasOpen) {
  const TemporaryFolder folder;
  const fs::path file = folder.Put("a.bin", "old");
  const HANDLE open = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  const auto saved = SaveAtomically(file, "new");
  EXPECT_TRUE(ReadWholeFile(file, 10).error().what.ends_with("; another program has it open: close it there"));
  CloseHandle(open);
  ASSERT_FALSE(saved);
  EXPECT_TRUE(saved.error().what.contains("; close it in other programs, and ")) << saved.error().what;
  EXPECT_EQ(TemporaryFolder::Content(file), "old");
  EXPECT_EQ(folder.EntryCount(), 1);
  EXPECT_TRUE(SaveAtomically(file, "new"));
}
#else
TEST(SaveAtomically, KeepsPermissionsAndLinks) {
  const TemporaryFolder folder;
  const fs::path file = folder.Put("real.txt", "old");
  const fs::path link = folder.Path() / "link.txt";
  const fs::path dangling = folder.Path() / "dangling.txt";
  fs::permissions(file, fs::perms{0640});
  fs::create_symlink("real.txt", link);
  fs::create_symlink("made.txt", dangling);

  ASSERT_TRUE(SaveAtomically(link, "new"));
  ASSERT_TRUE(SaveAtomically(dangling, "made"));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(TemporaryFolder::Content(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms{0640});
  EXPECT_EQ(TemporaryFolder::Content(folder.Path() / "made.txt"), "made");
}

#endif

TEST(ProgramPaths, NamesStayBelowTheirFolder) {
  const ProgramPaths paths(fs::path("home"));
  const fs::path session = fs::path("home") / "Sessions" / PathFromUtf8("M\u00FChle");
  EXPECT_EQ(paths.Session("M\u00FChle"), session);
  EXPECT_EQ(paths.SessionFile("M\u00FChle", "KvTeleExe.ini"), session / "KvTeleExe.ini");
  EXPECT_EQ(paths.Session("/etc"), fs::path("home") / "Sessions" / "etc");
  EXPECT_EQ(Utf8FromPath(paths.Session("M\u00FChle").filename()), "M\u00FChle");
}

// What is shipped below "program"; what is there afterwards tells where the program works.
struct FoldersCase {
  bool isForAll;
  const char* named;
  const char* user;
  const char* home;  // nothing: refused
  const char* help;
  const char* because;
};

TEST(ProgramFolders, AreTheUsersOwnWhereTheProgramsAreNot) {
  const FoldersCase cases[] = {
      {false, "", "user/data", "program", "program", "the program folder, which this user can write to"},
      {true, "", "user/data", "user/data", "program", "this user's own: the program is installed for all"},
      {true, "named", "user/data", "named", "program", "named by --home"},
      {true, "other", "", "other", "other", "named by --home"},  // an installation of its own
      {true, "", "", nullptr, "", ""},
      {true, "", "file/data", nullptr, "", ""},
  };
  for (const FoldersCase& each : cases) {
    const TemporaryFolder folder;
    const auto below = [&](const std::string& name) { return name.empty() ? fs::path() : folder.Path() / name; };
    for (const char* name : {"program/help", "program/Sessions/Default", "other/help"})
      fs::create_directories(below(name));
    const fs::path shipped = folder.Put("program/Sessions/Default/KvCmDrv1.ini", "Transport=sim");
    fs::permissions(shipped, fs::perms::owner_read);
    folder.Put("file", "in the way");
    if (each.isForAll) folder.Put(std::string("program/") + kInstalledForAll, "");

    const auto found = FindProgramFolders({below("program"), below(each.user)}, below(each.named));
    ASSERT_EQ(found.has_value(), each.home != nullptr) << each.user;
    EXPECT_EQ(HomeFault(below(each.named)).has_value(), std::string_view(each.named) == "named") << "is not there";
    if (!found) {
      EXPECT_TRUE(found.error().happened.contains(Utf8FromPath(below("program")))) << found.error().happened;
      EXPECT_TRUE(found.error().cure.contains("--home"));
      continue;
    }
    EXPECT_EQ(found->paths.Home(), below(each.home));
    EXPECT_EQ(found->paths.Help(), below(each.help) / "help");
    EXPECT_STREQ(HomeReasonText(found->reason), each.because);
    const bool isSeeded = std::string_view(each.home) == "user/data";
    EXPECT_EQ(fs::exists(below("user/data")), isSeeded);
    if (!isSeeded) continue;
    const fs::path settings = found->paths.SessionFile(kDefaultSession, "KvCmDrv1.ini");
    ASSERT_TRUE(SaveAtomically(settings, "Transport=tcp")) << "what is shipped may be write-protected";
    ASSERT_TRUE(FindProgramFolders({below("program"), below(each.user)}, {}));
    EXPECT_EQ(TemporaryFolder::Content(settings), "Transport=tcp") << "the second start leaves it as it is";
    EXPECT_EQ(std::distance(fs::directory_iterator(found->paths.Home()), {}), 1);
  }
}

}  // namespace
}  // namespace kv
