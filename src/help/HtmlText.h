#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// One tag of a page, with the text before it.
struct HtmlTag {
  std::string name;             // upper case; "/P" closes
  std::string_view attributes;  // as they stand in the page
  std::string_view before;      // the text since the tag before, references in it as they stand

  // The value of an attribute, references replaced; empty when it has none.
  [[nodiscard]] std::string Value(std::string_view attribute) const;
};

// Goes through the tags of a page; whatever the bytes are, it ends.
class HtmlTags {
 public:
  explicit HtmlTags(std::string_view html) : mRest(html) {}
  [[nodiscard]] std::optional<HtmlTag> Next();

 private:
  std::string_view mRest;
};

// What a search looks at.
struct HtmlPage {
  std::string title;               // the text of <title>
  std::string keywords;            // of <meta name="keywords">
  std::string questions;           // of <meta name="questions">, with semicolons between
  std::string text;                // what a reader sees, without the title
  std::vector<std::string> links;  // of <a href> and <img src>
  std::vector<std::string> terms;  // what is emphasised strongly
};

[[nodiscard]] HtmlPage ReadHtmlPage(std::string_view html);

}  // namespace kv
