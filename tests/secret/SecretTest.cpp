#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "secret/SecretFile.h"
#include "tests/support/FileRights.h"
#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

using ::testing::HasSubstr;

TEST(Secret, IsWipedWhereItWasTaken) {
  for (const std::string text : {"1234", "a password that is too long to stand in the text itself"}) {
    std::string plain = text + "and more";
    plain.resize(text.size());  // what was there before is wiped with it
    const char* const bytes = plain.data();
    const std::size_t size = text.size() + 8;
    const Secret taken = Secret::TakenFrom(plain);
    EXPECT_EQ(taken.View(), text);
    EXPECT_EQ(plain, "");
    EXPECT_EQ(std::string(bytes, size), std::string(size, '\0'));
  }
}

TEST(Secret, IsCopiedMovedAndCleared) {
  Secret one("1234");
  Secret other = one;
  one.Clear();
  EXPECT_TRUE(one.IsEmpty());
  EXPECT_EQ(other.View(), "1234");
  one = std::move(other);
  EXPECT_EQ(one.View(), "1234");
  one = Secret();
  EXPECT_EQ(one.View(), "");
}

TEST(SecretFile, IsReadWhenOnlyItsOwnerCan) {
  using enum Rights;
  const TemporaryFolder folder;
  const struct {
    std::string content;
    Rights rights;
    const char* expected;  // the password, or what is told
  } rows[] = {
      {"1234\n", Owners, "1234"},
      {"12 4\r\nnotes\n", Owners, "12 4"},
      {"1234", GroupReads, "others than its owner"},
      {"1234", OthersRead, "others than its owner"},
      {"1234", GroupWrites, "others than its owner"},
      {"\n1234", Owners, "empty first line"},
      {"", Owners, "empty first line"},
      {std::string(1025, 'x'), Owners, "too long"},
  };
  for (const auto& row : rows) {
    const auto file = folder.Put("password", row.content);
    GiveRights(file, row.rights);
    const auto read = ReadSecretFile(file);
    EXPECT_THAT(read ? std::string(read->View()) : read.error().happened, HasSubstr(row.expected)) << row.content;
    EXPECT_EQ(read.has_value(), read && read->View() == row.expected) << row.content;
    std::filesystem::remove(file);
  }
  EXPECT_THAT(ReadSecretFile(folder.Path()).error().happened, HasSubstr("no plain file"));
  EXPECT_THAT(ReadSecretFile(folder.Path() / "none").error().happened, HasSubstr("cannot be read"));
}

}  // namespace
}  // namespace kv
