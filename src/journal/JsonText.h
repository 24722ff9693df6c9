#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// The JSON of journal records: objects, arrays, texts in UTF-8, whole numbers from 0 on; no blanks between them.

// Appends `text` in quotes. Control characters are escaped, so no line end is ever in it; what is no UTF-8 becomes "?".
void AppendJsonText(std::string& json, std::string_view text);

// Reads such a text from the front. After the first thing that is not as expected it is not good any more, and hands
// out nothing that counts.
class JsonReader {
 public:
  static constexpr std::size_t kMostFields = 64;  // of one object

  explicit JsonReader(std::string_view json) : mRest(json) {}

  [[nodiscard]] bool IsGood() const { return mIsGood; }
  [[nodiscard]] bool IsAtEnd() const { return mIsGood && mRest.empty(); }

  [[nodiscard]] std::string Text();
  [[nodiscard]] std::uint64_t Number();
  // Passes over a value of any kind.
  void Skip(int depth = 0);

  // Calls `field` with the name of each field of an object; it takes the value. No two have one name.
  template <typename Field>
  void EachField(const Field& field) {
    std::vector<std::string> names;
    Each('{', '}', [&] {
      const std::string name = Text();
      Expect(':');
      if (names.size() == kMostFields || std::ranges::find(names, name) != names.end()) Fail();
      if (!mIsGood) return;
      names.push_back(name);
      field(name);
    });
  }
  // Calls `item` for each value of an array; it takes the value.
  template <typename Item>
  void EachItem(const Item& item) {
    Each('[', ']', item);
  }

 private:
  template <typename Value>
  void Each(char open, char close, const Value& value) {
    Expect(open);
    if (Takes(close)) return;
    do {
      if (mIsGood) value();
    } while (Takes(','));
    Expect(close);
  }
  bool Takes(char wanted);
  void Expect(char wanted) { mIsGood = Takes(wanted) && mIsGood; }
  void TakeSpecial(std::string& text);
  void TakeEscaped(std::string& text);
  void Fail() { mIsGood = false; }

  std::string_view mRest;
  bool mIsGood = true;
};

}  // namespace kv
