#include "base/IniText.h"

#include <gtest/gtest.h>

#include "base/PathText.h"
#include "base/ProfileStrings.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using namespace std::string_literals;

constexpr const char* kMissing = "<missing>";

TEST(IniText, FindsValues) {  // the key "k" of section "s"
  const std::pair<std::string, const char*> rows[] = {
      {"[s]\nk=v", "v"},
      {"[S]\r\nK=v\r\n", "v"},                        // without case
      {" \t[ s ] \r\n \tk\t = \tv w \t\r\n", "v w"},  // blanks around
      {"[s] junk\r\nk=v\r\n", "v"},                   // text after the bracket
      {"[s]\nk=1\n[s]\nk=2\n", "1"},                  // the first section wins ...
      {"[s]\nx=1\n[s]\nk=2\n", kMissing},             // ... even without the key
      {"[s]\nk=1\nk=2\n", "1"},                       // the first key wins
      {"k=1\n[s]\n", kMissing},                       // before any section
      {"[s]\n[t]\nk=1\n", kMissing},
      {"[s]\nk\n", kMissing},  // no "=", no key
      {"[s]\n=v\n", kMissing},
      {"[s]\n;k=v\n", kMissing},          // a comment
      {"[s]\n#k=v\n", kMissing},          // the key "#k"
      {"[s]\nk=a;b #c=d\n", "a;b #c=d"},  // no comment inside a line
      {"[s]\nk=\" a \"\n", " a "},        // one pair of quotes
      {"[s]\nk='a'\n", "a"},
      {"[s]\nk=\"\"a\"\"\n", "\"a\""},
      {"[s]\nk=\"\n", "\""},              // a single one stays
      {"[s]\nk=\"a'\n", "\"a'"},          // an unequal one too
      {"[s\nk=v\n", kMissing},            // no header
      {"\xEF\xBB\xBF[s]\nk=v\n", "v"},    // byte-order mark
      {"[s]\nx=\0\0\0\nk=a\0b\n"s, "a"},  // ends at a NUL
      {"[s]\n" + std::string(100000, 'x') + "\nk=v\n", "v"},
  };
  for (const auto& [text, value] : rows) EXPECT_EQ(IniText(text).Value("s", "k").value_or(kMissing), value) << text;
}

TEST(IniText, ComparesTheLettersOfTheCodePageWithoutCase) {
  const IniText ini("[\x8A\xC9]\nm\xDCll\xD7=v\n");
  EXPECT_EQ(ini.Value("\x9A\xE9", "M\xFCLL\xD7"), "v");
  EXPECT_EQ(ini.Value("\x9A\xE9", "M\xFCLL\xF7"), std::nullopt);  // the times sign is no capital of the division sign
}

TEST(IniText, AWriteChangesItsLineOnly) {  // "k" in "s" becomes "v"
  const std::pair<std::string, std::string> rows[] = {
      {"", "[s]\r\nk=v\r\n"},
      {"; mine", "; mine\r\n[s]\r\nk=v\r\n"},
      {"[t]\nx=1\n", "[t]\nx=1\n[s]\r\nk=v\r\n"},
      {"[s]\nk=old ; x\nb=2\n", "[s]\nk=v\r\nb=2\n"},
      {" [ S ]x\n \tK = \"old\"\n\tb=2\n", " [ S ]x\n \tK =v\r\n\tb=2\n"},  // spelling and blanks stay
      {"[s]\nk=1\nk=2\n[s]\nk=3\n", "[s]\nk=v\r\nk=2\n[s]\nk=3\n"},
      {"[s]\na=1\n\n \n[t]\nk=2\n", "[s]\na=1\nk=v\r\n\n \n[t]\nk=2\n"},  // before the blank lines
      {"[s]\n\n[t]\n", "[s]\nk=v\r\n\n[t]\n"},
      {"[s]\na=1", "[s]\na=1\r\nk=v\r\n"},
      {"\xEF\xBB\xBF[S]\n", "\xEF\xBB\xBF[S]\nk=v\r\n"},
      {"a\0b\n[s]\n\xFF\n"s, "a\0b\n[s]\n\xFF\nk=v\r\n"s},
  };
  for (const auto& [before, after] : rows) {
    IniText ini(before);
    ini.SetValue("s", "k", "v");
    EXPECT_EQ(ini.Text(), after);
  }
}

TEST(ProfileStrings, ReadAndWriteAFile) {
  const TemporaryFolder folder;
  const auto file = folder.Path() / "a.ini";
  EXPECT_EQ(ReadProfileString(file, "s", "k", " default \t "), " default");
  EXPECT_TRUE(WriteProfileString(file, "s", "k", std::nullopt));
  EXPECT_FALSE(std::filesystem::exists(file));  // deleting nothing makes no file

  EXPECT_TRUE(WriteProfileString(file, "s", "k", "1"));
  EXPECT_TRUE(WriteProfileString(file, "s", "b", ""));
  EXPECT_TRUE(WriteProfileString(file, "s", "k", std::nullopt));
  EXPECT_EQ(TemporaryFolder::Content(file), "[s]\r\nb=\r\n");
  const auto full = folder.Put("full.ini", "x\n[s]\nk=1\n; note\nb=2\n\n[t]\nk=3\n[s]\nk=4\n");
  EXPECT_TRUE(WriteProfileString(full, "S", "K", std::nullopt));
  EXPECT_TRUE(WriteProfileString(full, "s", "none", std::nullopt));
  EXPECT_EQ(TemporaryFolder::Content(full), "x\n[s]\n; note\nb=2\n\n[t]\nk=3\n[s]\nk=4\n");
  for (const auto& [buffer, value] : {std::pair(1, ""), {2, "1"}, {3, "1 "}, {4, "1 2"}, {5, "1 2"}})
    EXPECT_EQ(ReadProfileString(folder.Put("cut.ini", "[s]\nk=1 2\n"), "s", "k", "", buffer), value) << buffer;
  EXPECT_TRUE(WriteProfileString(full, "s", std::nullopt, std::nullopt));
  EXPECT_EQ(TemporaryFolder::Content(full), "x\n[t]\nk=3\n[s]\nk=4\n");
}

TEST(ProfileStrings, WorkInAFolderOfAnyNameAndDepth) {
  const TemporaryFolder folder;
  for (const auto& name : {PathFromUtf8("M\u00FChle \u03A9"), std::filesystem::path(std::string(150, 'x'))}) {
    const auto place = folder.Path() / name / name;
    std::error_code error;
    if (!std::filesystem::create_directories(place, error)) GTEST_SKIP() << "the system has no names so long";
    EXPECT_TRUE(WriteProfileString(place / "a.ini", "M\xFChle", "k", "\x80\x81\xFC"));
    EXPECT_EQ(ReadProfileString(place / "a.ini", "M\xFChle", "K", ""), "\x80\x81\xFC");
    EXPECT_EQ(TemporaryFolder::Content(place / "a.ini"), "[M\xFChle]\r\nk=\x80\x81\xFC\r\n");
  }
}

TEST(ProfileStrings, ValuesAreCutToTheBuffer) {
  const TemporaryFolder folder;
  const std::string text(300, 'x');
  const auto file = folder.Put("a.ini", "[s]\nk=" + text + "\n");
  EXPECT_EQ(ReadProfileString(file, "s", "k", ""), text.substr(0, 254));
  EXPECT_EQ(ReadProfileString(file, "s", "none", text), text.substr(0, 254));
  EXPECT_EQ(ReadProfileString(file, "s", "k", "", 301), text);
  EXPECT_EQ(ReadProfileString(file, "s", "k", "", 0), "");
}

TEST(ProfileStrings, RefusedWritesLeaveTheFile) {
  const TemporaryFolder folder;
  const std::string text = "[s]\nk=1\n";
  const auto file = folder.Put("a.ini", text);
  EXPECT_FALSE(WriteProfileString(file, "s", "k", "1\r\n[t]"));
  EXPECT_FALSE(WriteProfileString(file, "s", "k", "a\0b"s));
  for (const char* key : {"", " ", "a=b", ";k", " [k", "a\nb", "\rk"})
    EXPECT_FALSE(WriteProfileString(file, "s", key, ""));
  for (const char* section : {"", " ", "a]b", "a\nb"}) EXPECT_FALSE(WriteProfileString(file, section, "k", ""));
  EXPECT_EQ(TemporaryFolder::Content(file), text);
  EXPECT_FALSE(WriteProfileString(folder.Path() / "none" / "a.ini", "s", "k", "1"));
  EXPECT_FALSE(WriteProfileString(folder.Path(), "s", "k", "1"));
}

#ifndef _WIN32  // there the platform reads and writes such files
TEST(ProfileStrings, AFileThatIsNotReadIsNotWrittenEither) {
  const TemporaryFolder folder;
  const std::string wide = "\xFF\xFE[\0s\0]\0"s;
  const auto file = folder.Put("wide.ini", wide);
  EXPECT_FALSE(WriteProfileString(file, "s", "k", "1"));
  EXPECT_EQ(TemporaryFolder::Content(file), wide);
  const auto large = folder.Put("large.ini", "[s]\nk=1\n");
  std::filesystem::resize_file(large, 16 * 1024 * 1024 + 1);
  EXPECT_EQ(ReadProfileString(large, "s", "k", "default"), "default");
  EXPECT_FALSE(WriteProfileString(large, "s", "k", "2"));
}
#endif

}  // namespace
}  // namespace kv
