#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <utility>

#include "base/Crc32.h"
#include "base/FilePlatform.h"
#include "base/Hex.h"
#include "tests/support/Records.h"

namespace kv::test {

// Bytes as a record has them: "<0D>" for one that is no character, and the check of very many.
inline std::string Shown(std::string_view bytes) {
  if (bytes.size() > 250) return std::to_string(bytes.size()) + " bytes, check " + ToHex(Crc32(bytes), 8);
  std::string text;
  for (const char c : bytes)
    text += c >= 0x20 && c <= 0x7E ? std::string(1, c) : "<" + ToHex(static_cast<unsigned char>(c), 2) + ">";
  return text;
}

inline std::string Replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
  return text;
}

// Names the first line that differs, and the one before it that begins with `mark`.
inline void ExpectSameLines(const std::string& text, const std::string& written, const std::string& mark) {
  std::istringstream now(text);
  std::istringstream before(written);
  std::string marked;
  std::string line;
  for (std::string expected; std::getline(before, expected);) {
    if (!std::getline(now, line)) line = "the end";
    if (line.starts_with(mark)) marked = line;
    ASSERT_EQ(line, expected) << marked;
  }
  EXPECT_FALSE(std::getline(now, line)) << line;
}

// What of `bytes` may be otherwise: a row for each of them, with a mark for each value that is taken in its place, and
// a row for each other length.
template <typename Takes>
std::string WhatIsTaken(const std::string& bytes, Takes takes) {
  constexpr int kValues[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,   15,  16, 31,
                             32, 39, 40, 41, 48, 64, 65, 80, 81, 127, 128, 255};
  std::string rows;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    rows += std::to_string(at) + ": ";
    std::string other = bytes;
    for (const int value : kValues) {
      other[at] = static_cast<char>(value);
      rows += takes(std::as_const(other)) ? std::to_string(value) + " " : "- ";
    }
    rows += "\n";
  }
  rows += "long: ";
  for (std::size_t size = 0; size < bytes.size() + 100; ++size) {
    std::string other = bytes;
    other.resize(size, ' ');
    if (takes(std::as_const(other))) rows += std::to_string(size) + " ";
  }
  return rows + "\n";
}

// What the test that runs was seen to do, in tests/recorded/SUITE.TEST.txt, and how much of it it has done again. One
// that has no such file fails, and so does one that does not get to its end. Where chance decides, or where the test
// says all there is, the file is a line "not recorded: WHY".
class Record : public testing::EmptyTestEventListener {
 public:
  Record() { testing::UnitTest::GetInstance()->listeners().Append(this); }

  void OnTestStart(const testing::TestInfo& test) override {
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    mName = "recorded/" + Replaced(name, "/", ".") + ".txt";
    mWritten = RecordOf(mName);
    mAt = 0;
    if (mWritten || test.value_param() == nullptr) return;
    const std::size_t suite = name.find('/') + 1;  // one word for all of its parameters
    mWritten = RecordOf("recorded/" + name.substr(suite, name.rfind('/') - suite) + ".txt");
    if (!IsLeftOut()) mWritten.reset();
  }
  void OnTestEnd(const testing::TestInfo& test) override {
    const bool isOver = !mWritten || IsLeftOut() || AreRecordsRenewed() || !test.result()->Passed();
    EXPECT_TRUE(isOver || mAt == mWritten->size()) << "the test does less than tests/" << mName << " tells";
  }
  [[nodiscard]] bool IsLeftOut() const { return mWritten && mWritten->starts_with("not recorded: "); }

  void Expect(const std::string& text) {
    if (AreRecordsRenewed()) {
      RenewRecord(mName, text, std::exchange(mAt, 1) != 0);
    } else if (!mWritten) {
      ADD_FAILURE() << "there is no file tests/" << mName;
    } else {
      const std::size_t next = mWritten->find("\n##\n", mAt);
      const std::size_t end = next == std::string::npos ? mWritten->size() : next + 1;
      ExpectSameLines(text, mWritten->substr(mAt, end - mAt), "-->");
      mAt = end;
    }
  }

 private:
  std::string mName;
  std::optional<std::string> mWritten;
  std::size_t mAt = 0;  // behind what has been met of it
};
inline Record& gRecord = *new Record;  // it belongs to GoogleTest

// Holds what a test makes the program do against what it did when that was looked at: the parts follow each other in
// its record. Who has changed what is done renews the files with KV_RENEW_LOOKS=1 in the environment, and reads their
// difference.
template <typename Part>
void ExpectAsRecorded(Part part) {
  if (!gRecord.IsLeftOut()) gRecord.Expect("##\n" + part());
}

// A text as it is in every folder and on every system: HOME for the folder, slashes in paths, one system's words for a
// file that is not there. What JSON holds has two backslashes for one.
inline std::string WithoutHome(std::string text, const std::filesystem::path& home) {
  if (std::filesystem::path::preferred_separator == '\\') {
    for (const int gone : {2, 3})  // no such file, no such folder
      text = Replaced(std::move(text), SystemMessage({gone, std::system_category()}), "No such file or directory");
    text = Replaced(std::move(text), text.starts_with('{') ? "\\\\" : "\\", "/");
  }
  return Replaced(std::move(text), home.generic_string(), "HOME");
}

// What passed on a line, from the first line with the word `from` on; each time is that since the line before. Tags,
// power-up numbers, sequence numbers and the checks over them differ from run to run, and so does what is made of
// damaged bytes.
inline std::string TrafficText(std::string trace, const std::string& from = {}) {
  for (const auto& [what, instead] : {std::pair("(-->|<--|---) kvtele ", "$1 "),
                                      {"(/..(RO|WO|RM|IN|AC|SY|PD|PC|PE))[0-9A-F]{4}", "$1#"},
                                      {"(<-- /..SY#[0-9A-F]{4})[0-9A-F]{12}((WO|PE)[0-9A-F]{4})?", "$1#"},
                                      {"[0-9A-F]{10}<0D>", "#"},
                                      {"<B4>K.*(\\[unit [0-9]+: block) [0-9]+", "$1"},
                                      {"(<xx).*(\\n.* <xx.*)*", "$1"}})
    trace = std::regex_replace(trace, std::regex(what), instead);
  std::istringstream rest(trace.substr(trace.rfind('\n', trace.find(from)) + 1));
  std::string lines;
  double before = 0;
  for (auto [time, line] = std::pair(0.0, std::string()); rest >> time && std::getline(rest >> std::ws, line);) {
    if (!lines.empty() && time > before) lines += std::to_string(time - before) + " ";
    lines += line + "\n";
    before = time;
  }
  return lines;
}

}  // namespace kv::test
