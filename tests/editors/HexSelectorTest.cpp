#include <gtest/gtest.h>

#include "editors/CharacterTable.h"
#include "editors/clsHexSelector.h"

namespace kv {
namespace {

class FakeWindow final : public HexSelectorWindow {
 public:
  std::optional<std::string> Edit(const std::string& hexCode) override {
    offered = hexCode;
    return keepsOffer ? hexCode : answer;
  }
  std::string offered;
  std::optional<std::string> answer;
  bool keepsOffer = false;
};

TEST(HexSelectorTest, ReturnsWhatIsConfirmedAndOffersTheComma) {
  FakeWindow window;
  clsHexSelector selector(window);
  EXPECT_EQ(selector.SelectChar(), std::nullopt);
  EXPECT_EQ(window.offered, "2C");
  window.keepsOffer = true;
  EXPECT_EQ(selector.SelectChar(), 44);
  window.keepsOffer = false;
  for (const auto& [hex, code] : {std::pair("09", 9), {"00", 0}, {"FF", 255}, {"a0", 160}}) {
    window.answer = hex;
    EXPECT_EQ(selector.SelectChar(), code) << hex;
  }
}

TEST(HexSelectorTest, TheTableNamesEachCode) {
  struct Expected {
    std::size_t code;
    const char* decimal;
    const char* hex;
    const char* name;
    CharacterMark mark;
  };
  for (const Expected& expected : {
           Expected{0, "0", "00", "(NUL)", CharacterMark::None},
           {9, "9", "09", "(HT)", CharacterMark::Fit},
           {10, "10", "0A", "(LF)", CharacterMark::Unfit},
           {13, "13", "0D", "(CR)", CharacterMark::Unfit},
           {25, "25", "19", "(EM)", CharacterMark::None},
           {31, "31", "1F", "(US)", CharacterMark::None},
           {44, "44", "2C", ",", CharacterMark::None},
           {128, "128", "80", "\u20AC", CharacterMark::None},
           {255, "255", "FF", "\u00FF", CharacterMark::None},
       }) {
    const CharacterRow& row = CharacterTable()[expected.code];
    EXPECT_EQ(row.code, expected.code);
    EXPECT_EQ(row.decimal, expected.decimal);
    EXPECT_EQ(row.hex, expected.hex);
    EXPECT_EQ(row.name, expected.name);
    EXPECT_EQ(row.mark, expected.mark) << expected.hex;
  }
}

}  // namespace
}  // namespace kv
