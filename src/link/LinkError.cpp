#include "link/LinkError.h"

#include <string_view>

namespace kv {
namespace {

// Appends `text` as a line of its own: first letter capital, a full stop at its end. An empty text adds no line.
void AddSentence(std::string& lines, std::string text) {
  if (text.empty()) return;
  if (text.front() >= 'a' && text.front() <= 'z') text.front() = static_cast<char>(text.front() - 'a' + 'A');
  if (std::string_view(".!?").find(text.back()) == std::string_view::npos) text += '.';
  if (!lines.empty()) lines += '\n';
  lines += text;
}

std::string After(std::string_view heading, const std::string& text) {
  return text.empty() ? std::string() : std::string(heading) + text;
}

}  // namespace

std::string LinkError::Text() const {
  if (code == LinkErrorCode::None) return {};
  std::string lines;
  if (doing.empty() || happened.empty()) {
    AddSentence(lines, doing.empty() ? happened : doing + " failed");
  } else {
    AddSentence(lines, doing + " failed: " + happened);
  }
  AddSentence(lines, After("Likely cause: ", cause));
  AddSentence(lines, After("What to do: ", cure));
  return lines;
}

}  // namespace kv
