#include "KvTele2/Journal.h"

namespace kv {

void Journal::Add(std::string time, std::string text) {
  if (mEntries.size() == kMostEntries) mEntries.pop_front();
  mEntries.push_back({std::move(time), std::move(text)});
  ++mTotal;
}

std::string EntryText(const Journal::Entry& entry) {
  const std::string indent = "\n" + std::string(entry.time.size() + 2, ' ');
  std::string text = entry.time + "  ";
  for (const char c : entry.text) {
    if (c == '\n') {
      text += indent;
    } else if (c != '\r') {
      text += c;
    }
  }
  return text;
}

}  // namespace kv
