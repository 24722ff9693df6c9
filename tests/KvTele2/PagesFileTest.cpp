#include "KvTele2/PagesFile.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"

namespace kv {
namespace {

std::string WithLines(const std::string& text) {
  std::string lines;
  for (const char c : text) lines += c == '|' ? std::string("\r\n") : std::string(1, c);
  return lines;
}

TEST(PagesFileTest, WhatIsWrongIsNamedWithItsLine) {
  const struct {
    const char* text;  // "|" ends a line
    std::size_t line;
    const char* what;
  } cases[] = {
      {"PAGES 1|", 1, "expected a line that begins with \"TELEPANEL-PAGES \""},
      {"TELEPANEL-PAGES 2|project A|", 1, "expected version 1, the only one that this program reads"},
      {"TELEPANEL-PAGES 1|project |", 2, "expected a project name of 1 to 20 characters"},
      {"TELEPANEL-PAGES 1|project 123456789012345678901|", 2, "expected a project name of 1 to 20 characters"},
      {"TELEPANEL-PAGES 1|project A\tB|", 2, "expected a project name of 1 to 20 characters"},
      {"TELEPANEL-PAGES 1|project A|model K999|", 3,
       "expected the text of a model that this program knows, such as K220-22-R1"},
      {"TELEPANEL-PAGES 1|project A|model Q50", 3, "expected the line \"model ...\", whole"},
      {"TELEPANEL-PAGES 1|project A|model Q50|check 00000000|", 4,
       "expected the check of the lines before: the file is damaged"},
      {"TELEPANEL-PAGES 1|project A|model Q50|check 0x12|", 4,
       "expected the check of the lines before: the file is damaged"},
  };
  for (const auto& each : cases) {
    const auto pages = ParsePagesFile(WithLines(each.text));
    ASSERT_FALSE(pages) << each.text;
    EXPECT_EQ(pages.error().line, each.line) << each.text;
    EXPECT_EQ(pages.error().what, each.what) << each.text;
  }
  const auto more = ParsePagesFile(PrintPagesFile({"A", "Q50"}) + "page 1\r\n");
  ASSERT_FALSE(more);
  EXPECT_EQ(more.error().line, 4u);
}

}  // namespace
}  // namespace kv
