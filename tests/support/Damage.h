#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "tests/support/Recorded.h"

namespace kv::test {

// What a text has that another, like it, has not: the rest on both sides as "...".
inline std::string DifferenceTo(const std::string& whole, const std::string& text) {
  if (text == whole) return "the same";
  const auto begin = std::ranges::mismatch(text, whole).in1 - text.begin();
  const auto least = static_cast<std::ptrdiff_t>(std::min(text.size(), whole.size())) - begin;
  const auto same = std::mismatch(text.rbegin(), text.rbegin() + least, whole.rbegin()).first - text.rbegin();
  if (begin + same < 20) return text;
  return "..." + std::string(text.begin() + begin, text.end() - same) + "...";
}

// What a reader tells of each file that a good one becomes when it is cut at a place, or has another byte there, one
// more or one less. What it tells of several places in a row stands once, with the first of them.
inline std::string ToldOfDamage(const std::string& good, const std::function<std::string(const std::string&)>& read) {
  using Change = void (*)(std::string& bytes, std::size_t at);
  const std::pair<const char*, Change> changes[] = {
      {"cut at", [](std::string& bytes, std::size_t at) { bytes.resize(at); }},
      {"one more", [](std::string& bytes, std::size_t at) { bytes.insert(at, 1, bytes[at]); }},
      {"one less", [](std::string& bytes, std::size_t at) { bytes.erase(at, 1); }},
      {"+1", [](std::string& bytes, std::size_t at) { ++bytes[at]; }},
      {"-1", [](std::string& bytes, std::size_t at) { --bytes[at]; }},
      {"FF", [](std::string& bytes, std::size_t at) { bytes[at] = '\xFF'; }},
  };
  static const std::string kRoom(8, '\0');  // that nothing is in
  const std::string whole = read(good);
  std::string all = Shown(whole) + "\n";
  for (const auto& [name, change] : changes) {
    std::string before;
    for (std::size_t at = 0; at < good.size(); ++at) {
      if (good.substr(at, kRoom.size()) == kRoom) continue;
      std::string bytes = good;
      change(bytes, at);
      const std::string told = Shown(DifferenceTo(whole, read(bytes)));
      if (told != std::exchange(before, told)) all += name + (" " + std::to_string(at)) + ": " + told + "\n";
    }
  }
  return all;
}

}  // namespace kv::test
