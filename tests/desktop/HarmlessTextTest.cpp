#include "desktop/console/HarmlessText.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kv {
namespace {

// A controller's text would otherwise clear the screen, rename the window or answer the next question by itself.
TEST(HarmlessText, ShowsWhatATerminalWouldObey) {
  const std::pair<std::string, std::string> rows[] = {
      {"K220 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA7", "K220 \xC3\xA4\xE2\x82\xAC\xF0\x9F\x94\xA7"},
      {"a\x1B[2Jb\r\n\tc\x7F", "a<1B>[2Jb<0D>\n\tc<7F>"},
      {"\xC2\x90q\xC2\x9D"
       "0;x\xC2\x85\xC2\xA0",
       "<90>q<9D>0;x<85>\xC2\xA0"},
      {"\x9B"
       "2J\xC3(\xE2\x82(\xC0\x9B\xFF",
       "<9B>2J<C3>(<E2><82>(<C0><9B><FF>"},
      {std::string("\0", 1), "<00>"},
  };
  for (const auto& [text, shown] : rows) {
    EXPECT_EQ(HarmlessText(text, "\n\t"), shown);
    std::ostringstream whole, pieces;
    HarmlessBuffer wholeBuffer(whole, "\n\t"), piecesBuffer(pieces, "\n\t");
    std::ostream(&wholeBuffer) << text;
    for (const char c : text) std::ostream(&piecesBuffer).put(c);
    EXPECT_EQ(whole.str(), shown);
    EXPECT_EQ(pieces.str(), shown) << "a letter that comes in pieces";
  }
  EXPECT_EQ(HarmlessText("\xE2\x82"), "<E2><82>") << "the text ends within a letter";
  EXPECT_EQ(HarmlessText("K220\nstate running"), "K220<0A>state running");
}

}  // namespace
}  // namespace kv
