#include "download/ui/QuietCloner.h"

#include <algorithm>

namespace kv {
namespace {

// A restore shows the first lines of its file: date, controller, and code, start and length of each segment.
constexpr const char* kWhatFor = "For the clone before the download:\r\n";
constexpr std::string_view kHeadOfFile = "Korvantis Clone File:";

std::string InWords(std::string text) {
  std::erase(text, '\r');
  std::ranges::replace(text, '\t', ' ');
  if (!text.starts_with(kHeadOfFile)) return text;
  const char* const names[] = {"\nMade of: ", "\nSegments, with start and length: "};
  std::size_t end = 0;
  for (const char* name : names) {
    end = text.find('\n', end);
    if (end == std::string::npos) break;
    text.replace(end, 1, name);
    ++end;
  }
  return "Written back now: " + text;
}

}  // namespace

PromptAnswer QuietCloner::Show(const MessageBox& box) {
  if (box.buttons != PromptButtons::Ok) {
    MessageBox named = box;
    named.text.insert(0, kWhatFor);
    return mPrompts.Show(named);
  }
  mOnTold(box.title + ": " + InWords(box.text));
  return PromptAnswer::Ok;
}

}  // namespace kv
