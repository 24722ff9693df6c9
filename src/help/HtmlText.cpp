#include "help/HtmlText.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/Texts.h"

namespace kv {
namespace {

constexpr auto kReferences = std::to_array<std::pair<std::string_view, std::string_view>>(
    {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}});

std::string Plain(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    std::size_t taken = 1;
    std::string_view shown = text.substr(0, 1);
    for (const auto& [reference, character] : kReferences) {
      if (!text.starts_with(reference)) continue;
      taken = reference.size();
      shown = character;
    }
    plain += shown;
    text.remove_prefix(taken);
  }
  return plain;
}

bool IsInline(const std::string& tag) {
  const std::string_view name = std::string_view(tag).substr(tag.starts_with('/') ? 1 : 0);
  return name == "STRONG" || name == "EM" || name == "CODE" || name == "A";
}

}  // namespace

std::string HtmlTag::Value(std::string_view attribute) const {
  const std::string wanted = std::string(attribute) + "=\"";
  std::size_t at = attributes.find(wanted);
  while (at != std::string_view::npos && at > 0 && attributes[at - 1] != ' ' && attributes[at - 1] != '\n') {
    at = attributes.find(wanted, at + 1);
  }
  if (at == std::string_view::npos) return {};
  const std::string_view rest = attributes.substr(at + wanted.size());
  return Plain(rest.substr(0, rest.find('"')));
}

std::optional<HtmlTag> HtmlTags::Next() {
  const std::size_t begin = mRest.find('<');
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = mRest.find('>', begin);
  if (end == std::string_view::npos) return std::nullopt;
  HtmlTag tag;
  tag.before = mRest.substr(0, begin);
  const std::string_view inside = mRest.substr(begin + 1, end - begin - 1);
  const std::size_t name = std::min(inside.find_first_of(" \r\n\t"), inside.size());
  tag.name = UpperCased(inside.substr(0, name));
  tag.attributes = inside.substr(name);
  mRest.remove_prefix(end + 1);
  return tag;
}

HtmlPage ReadHtmlPage(std::string_view html) {
  HtmlPage page;
  bool isBody = false;
  for (HtmlTags tags(html); const auto tag = tags.Next();) {
    const std::string before = Plain(tag->before);
    if (tag->name == "/TITLE") page.title = before;
    if (tag->name == "/STRONG") page.terms.push_back(before);
    if (tag->name == "META" && tag->Value("name") == "keywords") page.keywords = tag->Value("content");
    if (tag->name == "META" && tag->Value("name") == "questions") page.questions = tag->Value("content");
    if (tag->name == "A") page.links.push_back(tag->Value("href"));
    if (tag->name == "IMG") page.links.push_back(tag->Value("src"));
    if (isBody) page.text += before + (IsInline(tag->name) ? "" : " ");
    if (tag->name == "BODY" || tag->name == "/H1") isBody = true;
    if (tag->name == "H1") isBody = false;
  }
  return page;
}

}  // namespace kv
