#include "desktop/console/ConsoleShell.h"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "base/PathText.h"
#include "tests/base/TemporaryFolder.h"

namespace kv {
namespace {

TEST(ConsoleShell, NamesWhatIsMissing) {
  const auto opened = ConsoleShell().Open("open", "/nowhere/PID Server", "");
  ASSERT_FALSE(opened);
  EXPECT_NE(opened.error().find("/nowhere/PID Server"), std::string::npos);
}

#ifndef _WIN32
TEST(ConsoleShell, StartsAProgramWithItsParameters) {
  const TemporaryFolder folder;
  const auto program = folder.Put("a program", "#!/bin/sh\necho \"$#:$*\" > \"$(dirname \"$0\")/seen\"\n");
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  ASSERT_TRUE(ConsoleShell().Open("open", Utf8FromPath(program), "/t:K220 second"));
  ASSERT_GT(wait(nullptr), 0);
  EXPECT_EQ(TemporaryFolder::Content(folder.Path() / "seen"), "2:/t:K220 second\n");
}
#endif

}  // namespace
}  // namespace kv
