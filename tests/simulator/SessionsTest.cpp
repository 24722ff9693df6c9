// What simulated controllers answer on their lines, when, and what it changes in them: each file in
// tests/simulator/sessions goes through that again. Who has changed it renews the files with KV_RENEW_LOOKS=1 in the
// environment, and reads their difference.
//
// "## ..." begins with a new controller, "% WORD TEXT" says what it is like; "> ID" is a command, "> RO FIELDS" one
// with tag and check, "* OPERATION PARAM1 LENGTH PARAM3 PARAM4 PAYLOAD" a block message, "! BYTES" are any bytes, "~
// MS" is a wait, and "= ." asks what its state file has now that it had not before. What came of it stands below, with
// the time of its first and last byte in microseconds where that is not at once.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "base/PathText.h"
#include "simulator/BlockMessage.h"
#include "simulator/Seal.h"
#include "simulator/SimulatedController.h"
#include "simulator/SimulatedModem.h"
#include "tests/support/Recorded.h"
#include "tests/support/TemporaryFolder.h"

namespace sim::test {
namespace {

using namespace std::chrono_literals;

// Bytes of what a record shows.
std::string BytesOf(const std::string& shown) {
  std::string bytes;
  for (std::size_t at = 0; at < shown.size(); ++at) {
    const bool isByte = shown[at] == '<' && at + 3 < shown.size() && shown[at + 3] == '>';
    bytes += isByte ? static_cast<char>(kv::ParseHex(shown.substr(at + 1, 2)).value_or(0)) : shown[at];
    at += isByte ? 3 : 0;
  }
  return bytes;
}

class Session {
 public:
  Session() {
    mOptions.serialNumber = 4711;
    mOptions.powerUp = std::uint16_t{7};
    mOptions.stateFile = kv::Utf8FromPath(mFile);
  }
  // What comes of a line of the file.
  std::string Do(char mark, const std::string& text) {
    const std::size_t end = std::min(text.find(' '), text.size());
    if (mark == '%') return Prepare(text.substr(0, end), BytesOf(text.substr(std::min(end + 1, text.size()))));
    if (const std::string why = mSimulated ? "" : Begin(); !why.empty()) return why;
    if (mark == '=') return Changes();
    if (mark == '*') return Say(Block(text), {}, 10s);
    if (mark == '!') return Say(BytesOf(text), {}, 10s);
    if (mark == '>') return Ask(BytesOf(text));
    const kv::Instant until = mNow + std::chrono::milliseconds(std::stoi(text));
    std::string told = Say({}, {}, until - mNow);
    mNow = until;
    return told;
  }

 private:
  std::string Prepare(const std::string& word, const std::string& text) {
    if (word == "model") mOptions.model = text;
    if (word == "os") mOptions.osVersion = text;
    if (word == "unit") mOptions.unit = static_cast<std::uint8_t>(std::stoi(text));
    if (word == "needs") mOptions.password = text;
    if (word == "boot") mOptions.boot = true;
    if (word == "baud") mOptions.baud = std::stoi(text);
    if (word == "fault") mOptions.faults.push_back(text);
    if (word == "modem") mModem = {.result = DialResult(text[0] - '0'), .answers = ModemAnswers(text[1] - '0')};
    if (word == "off") mSimulated.reset(), mLines.clear();  // and on again
    if (word == "line") mName = text;                       // of several to the same controller
    if (word == "pull") TheLine().Disconnect(mNow), mLines.erase(mName);
    if (word == "speed") TheLine().SetBaud(std::stoi(text));
    const std::size_t arrow = text.find(" => ");
    if (word == "state")  // what stands in the state file, by something else
      mFolder.Put("state", kv::test::Replaced(mFolder.Content(mFile), text.substr(0, arrow), text.substr(arrow + 4)));
    return {};
  }
  std::string Begin() {
    auto made = SimulatedController::Create(mOptions);
    if (!made) return "  " + kv::test::WithoutHome(made.error(), mFolder.Path()) + "\n";
    mSimulated = std::move(*made);
    static std::map<std::string, std::set<std::string>> atFirst;  // to have it written takes long
    std::set<std::string>& first = atFirst[mOptions.model + " " + mOptions.osVersion];
    if (first.empty()) (void)Changes(), first = mKept;
    if (mKept.empty()) mKept = first;
    return {};
  }
  kv::InProcessLine& TheLine() {
    if (!mSimulated) (void)Begin();
    auto& line = mLines[mName];
    if (line) return *line;
    line = mSimulated->NewLine();
    if (mModem) line = std::make_unique<SimulatedModem>(std::move(line), *mModem);
    (void)line->Connect(mNow);
    return *line;
  }
  std::string Ask(std::string text) {
    if (text.size() > 2 && text[2] == ':') {
      text.replace(2, 1, "A1B2");
      text += kv::ToHex(kv::Crc32(kv::ToHex(mOptions.unit, 2) + text), 8);
    }
    return Say(EncodeFrame(mOptions.unit, text), text, 10s);
  }
  std::string Block(const std::string& text) {
    BlockMessage message;
    message.unit = mOptions.unit;
    message.sequence = ++mSequence;
    std::istringstream fields(text);
    fields >> message.opCode >> message.param1 >> message.dataLength >> message.param3 >> message.param4 >> std::ws;
    std::string payload;
    std::getline(fields, payload);
    payload = BytesOf(payload);
    message.payload = payload;
    return EncodeBlock(message);
  }
  // What comes back until nothing is on its way, or for so long.
  std::string Say(const std::string& bytes, const std::string& request, kv::Duration limit) {
    kv::InProcessLine& line = TheLine();
    const kv::Instant start = mNow;
    if (!bytes.empty()) line.Write(bytes, start);
    std::string heard;
    kv::Duration first{}, last{};
    for (std::optional<kv::Instant> next = start; next && *next <= start + limit; next = line.NextEvent()) {
      mNow = std::max(mNow, *next);
      const std::string piece = line.Read(mNow);
      if (piece.empty()) continue;
      last = mNow - start;
      if (heard.empty()) first = last;
      heard += piece;
    }
    std::string told = "  ";
    if (last > 0s) told += std::to_string(first.count()) + ".." + std::to_string(last.count()) + " ";
    return told + (heard.empty() ? "nothing" : Meaning(heard, request)) + (line.IsConnected() ? "\n" : " (gone)\n");
  }
  static std::string Meaning(const std::string& bytes, const std::string& request) {
    constexpr std::size_t kSeal = 12;
    const auto frame = bytes.starts_with('/') ? DecodeFrame(bytes) : std::nullopt;
    if (frame && frame->text.size() > kSeal) {
      const std::string reply(frame->text.substr(0, frame->text.size() - kSeal));
      const auto counter = kv::ParseHex(frame->text.substr(reply.size(), 4)).value_or(0);
      if (bytes == EncodeReply(frame->unit, request, reply, static_cast<std::uint16_t>(counter)))
        return std::to_string(frame->unit) + ": " + kv::test::Shown(reply) + " #" + std::to_string(counter);
    }
    const auto size = BlockSize(bytes);
    const auto block = size && *size == bytes.size() ? DecodeBlock(bytes) : std::nullopt;
    if (!block) return kv::test::Shown(bytes);
    const std::string payload = block->payload.empty() ? "" : " " + kv::test::Shown(block->payload);
    return std::to_string(block->unit) + ": " + std::to_string(block->status) + payload;
  }
  std::string Changes() {
    const auto saved = mSimulated->SaveState();
    std::istringstream file(mFolder.Content(mFile));
    std::string told = saved ? "" : "  " + saved.error() + "\n";
    std::set<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      lines.insert(line);
      const bool moves = line.starts_with("cells SB 0000") || line.starts_with("cells SI 0020") ||
                         line.starts_with("cells MI 0060") || line.starts_with("check");  // by itself
      if (!mKept.contains(line) && !moves) told += "  " + line + "\n";
    }
    mKept = lines;
    return told;
  }

  kv::TemporaryFolder mFolder;
  std::filesystem::path mFile = mFolder.Path() / "state";
  SimulatorOptions mOptions;
  std::optional<ModemOptions> mModem;
  std::unique_ptr<SimulatedController> mSimulated;
  std::map<std::string, std::unique_ptr<kv::InProcessLine>> mLines;
  std::string mName;
  std::uint16_t mSequence = 0;
  std::set<std::string> mKept;
  kv::Instant mNow{1h};
};

class Sessions : public testing::TestWithParam<const char*> {};

TEST_P(Sessions, AreTheSameAgain) {
  const std::string name = std::string("simulator/sessions/") + GetParam() + ".txt";
  const std::string written = kv::test::RecordOf(name).value_or("");
  ASSERT_NE(written, "");
  std::istringstream lines(written);
  std::string again;
  std::unique_ptr<Session> session;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ")) continue;  // what came of the line before
    again += line + "\n";
    if (line.starts_with("## ")) session = std::make_unique<Session>();
    if (line.size() > 2 && line[1] == ' ') again += session->Do(line[0], line.substr(2));
  }
  if (kv::test::AreRecordsRenewed()) return kv::test::RenewRecord(name, again);
  kv::test::ExpectSameLines(again, written, "## ");
}

INSTANTIATE_TEST_SUITE_P(Simulator, Sessions,
                         testing::Values("commands", "downloads", "faults", "line", "memory", "modem", "operands",
                                         "state"),
                         [](const auto& made) { return std::string(made.param); });

}  // namespace
}  // namespace sim::test
