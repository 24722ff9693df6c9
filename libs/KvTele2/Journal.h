#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>

namespace kv {

// What happened since the program started, oldest first; the oldest entries go when there are too many.
class Journal {
 public:
  static constexpr std::size_t kMostEntries = 1000;

  struct Entry {
    std::string time;  // "14:05:09"
    std::string text;  // UTF-8, one or more lines
  };

  void Add(std::string time, std::string text);
  void Clear() { mEntries.clear(); }

  [[nodiscard]] const std::deque<Entry>& Entries() const { return mEntries; }
  // Number of entries that were ever added: a view that knows how many it has seen can tell what is new.
  [[nodiscard]] std::uint64_t Total() const { return mTotal; }

 private:
  std::deque<Entry> mEntries;
  std::uint64_t mTotal = 0;
};

// One entry as a line for the clipboard; its further lines are indented.
[[nodiscard]] std::string EntryText(const Journal::Entry& entry);

}  // namespace kv
