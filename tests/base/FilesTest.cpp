#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>
#endif

#include "base/AtomicFile.h"
#include "base/PathText.h"
#include "base/ProgramPaths.h"
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
  const HANDLE open = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  const auto saved = SaveAtomically(file, "new");
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

}  // namespace
}  // namespace kv
