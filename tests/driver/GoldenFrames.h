#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "base/Hex.h"

// One line of tests/golden/*.txt.
struct GoldenFrame {
  std::string name;
  bool isRequest = false;
  std::string bytes;
  std::map<std::string, std::string> fields;

  [[nodiscard]] std::string Field(const std::string& key) const { return fields.contains(key) ? fields.at(key) : ""; }
  [[nodiscard]] unsigned Number(const std::string& key) const {
    return static_cast<unsigned>(std::stoul(fields.at(key)));
  }
};

inline std::string FromHex(const std::string& hex) {
  const auto bytes = kv::HexStringToBytes(hex);
  EXPECT_TRUE(bytes) << hex;
  return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
}

inline std::vector<std::string> SplitAtTabs(const std::string& line) {
  std::vector<std::string> parts(1);
  for (const char c : line) {
    if (c == '\t') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

inline std::vector<GoldenFrame> ReadGoldenFrames(const std::string& file) {
  std::vector<GoldenFrame> frames;
  std::ifstream in(std::string(KV_TEST_DATA "/golden/") + file);
  EXPECT_TRUE(in) << file;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::vector<std::string> parts = SplitAtTabs(line);
    GoldenFrame frame{parts.at(0), parts.at(1) == "request", FromHex(parts.at(2)), {}};
    for (std::size_t i = 3; i < parts.size(); ++i) {
      const std::size_t equals = parts[i].find('=');
      frame.fields[parts[i].substr(0, equals)] = parts[i].substr(equals + 1);
    }
    frames.push_back(std::move(frame));
  }
  return frames;
}
