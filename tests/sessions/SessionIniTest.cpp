#include "sessions/SessionIni.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "sessions/RecentCaches.h"
#include "tests/support/SessionFixture.h"

namespace kv {
namespace {

using testing::ElementsAre;

struct SessionIniTest : testing::Test, test::SessionFixture {};

TEST_F(SessionIniTest, WritesAndSaysWhyItCannot) {
  const auto file = Put("KvTeleExe.ini", "[KvTeleExe]\r\nA=1");
  EXPECT_TRUE(WriteSessionIni(shared, "KtaPath", "C:\\M\xC3\xBCll"));
  EXPECT_EQ(ReadSessionIni(shared, "KtaPath", ""), "C:\\M\xC3\xBCll");
  EXPECT_TRUE(RemoveSessionIni(shared, "KtaPath"));
  EXPECT_EQ(ReadSessionIni(shared, "KtaPath", "gone"), "gone");

  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  const auto protectedFile = WriteSessionIni(shared, "A", "2");
  ASSERT_FALSE(protectedFile);
  EXPECT_THAT(protectedFile.error(), testing::HasSubstr("KvTeleExe.ini could not be written.\nLikely cause: "));
  EXPECT_EQ(ReadSessionIni(shared, "A", ""), "1");
}

TEST_F(SessionIniTest, RefusesWhatWouldNotBeReadBackAsItIs) {
  const std::string longest(254, 'x');
  EXPECT_TRUE(WriteSessionIni(shared, "KtaPath", longest));
  for (const std::string& value :
       {longest + "x", std::string("/\xD0\x9C"), std::string("a\nB=1"), std::string("\"a\""), std::string("a ")}) {
    const auto kept = WriteSessionIni(shared, "KtaPath", value);
    ASSERT_FALSE(kept) << value;
    EXPECT_THAT(kept.error(), testing::HasSubstr("cannot be kept in KvTeleExe.ini: "));
    EXPECT_FALSE(AddRecentCache(shared, value));
    EXPECT_EQ(ReadSessionIni(shared, "KtaPath", ""), longest);
  }
}

TEST_F(SessionIniTest, TenRecentCachesNewestFirstEachPathOnce) {
  for (int i = 0; i < 12; ++i) EXPECT_TRUE(AddRecentCache(shared, "/c/" + std::to_string(i) + ".ktc*note"));
  auto entries = ReadRecentCaches(shared);
  ASSERT_EQ(entries.size(), kMostRecentCaches);
  EXPECT_EQ(entries.front(), "/c/11.ktc*note");
  EXPECT_EQ(entries.back(), "/c/2.ktc*note");

  entries = AddRecentCache(shared, "/c/5.ktc*other").value();
  EXPECT_EQ(entries, ReadRecentCaches(shared));
  EXPECT_EQ(entries.size(), kMostRecentCaches);
  EXPECT_EQ(entries.front(), "/c/5.ktc*other");
  EXPECT_EQ(std::ranges::count(entries, "/c/5.ktc", &CachePath), 1);

  EXPECT_FALSE(AddRecentCache(shared, "/c/\xD0\x9C.ktc"));  // letters that the settings cannot hold
  EXPECT_EQ(ReadRecentCaches(shared), entries);
}

}  // namespace
}  // namespace kv
