#include "Requests.h"

#include <gtest/gtest.h>

#include <chrono>

#include "base/Hex.h"

namespace kv::matrix {
namespace {

std::vector<std::int16_t> FreshWords(Fixture& fixture, std::size_t count) {
  std::vector<std::int16_t> words(count);
  for (std::int16_t& word : words) word = static_cast<std::int16_t>(fixture.Fresh());
  return words;
}

std::string Digits(std::span<const std::int16_t> words) {
  std::string digits;
  for (const std::int16_t word : words) digits += ToHex(static_cast<std::uint16_t>(word), 4);
  return digits;
}

std::string Span(std::string_view type, std::size_t start, std::size_t count) {
  return std::string(type) + ToHex(static_cast<std::uint32_t>(start), 4) + ToHex(static_cast<std::uint32_t>(count), 4);
}

// Running after every even number of calls, stopped after every odd one.
void FlipState(Fixture& fixture) {
  (void)fixture.Tell(fixture.Fresh() % 2 == 0 ? "CCR" : "CCS");
}

Attempt JudgeText(Fixture& fixture, std::string_view command, const std::string& before) {
  Channel* link = fixture.Link();
  const auto reply = link != nullptr ? link->SendCommand(command) : std::nullopt;
  if (!reply || reply->IsError()) return {};
  const std::string text = reply->text.substr(0, reply->text.size() - 2);
  // The power may have failed between the answer and now.
  return {true, text == before || text == fixture.Tell(command)};
}

Attempt ReadSystemBytes(Fixture& fixture) {
  FlipState(fixture);
  return JudgeText(fixture, "DRS000020", fixture.Tell("DRS000020"));
}

Attempt PrepareDownload(Fixture& fixture) {
  Attempt attempt = JudgeText(fixture, "PV000A", "PVOK");
  attempt.executions = fixture.controller->MostExecutions();
  return attempt;
}

Attempt WriteFlash(Fixture& fixture) {
  (void)fixture.Tell("CCS");
  const std::string data = ToHex(fixture.Fresh(), 4) + ToHex(fixture.Fresh(), 4);
  Attempt attempt = JudgeText(fixture, "FW00000040" + data, "FWOK");
  if (attempt.isDone) attempt.isRight = attempt.isRight && fixture.Tell("RX00000040").substr(10, 8) == data;
  return attempt;
}

Attempt ReadWords(Fixture& fixture) {
  const auto words = FreshWords(fixture, 60);
  (void)fixture.TellOwn("WO", Span("03", 2, words.size()) + Digits(words));
  Channel* link = fixture.Link();
  const auto read = link != nullptr ? link->ReadMI(2, 60, 1) : std::nullopt;
  return {read.has_value(), !read || *read == words};
}

Attempt WriteWords(Fixture& fixture) {
  const auto words = FreshWords(fixture, 3);
  Channel* link = fixture.Link();
  const bool isDone = link != nullptr && link->WriteMI(7, words, 1);
  const std::string held = fixture.TellOwn("RO", Span("03", 7, words.size()));
  return {isDone, !isDone || held.substr(10) == Digits(words), fixture.controller->MostExecutions()};
}

// Where the application memory begins, by the segment table.
std::uint32_t ApplicationStart(Fixture& fixture) {
  std::string password = Fixture::kPassword;
  password.resize(8, ' ');
  const std::string table = fixture.Tell("GI" + password);
  return ParseHex(std::string_view(table).substr(table.find("APF") + 3, 8)).value_or(0);
}

template <std::uint32_t length>
Attempt ReadMemory(Fixture& fixture) {
  (void)fixture.Tell("CCS");
  const std::string line = ToHex(fixture.Fresh(), 4) + ToHex(fixture.Fresh(), 4);
  for (std::uint32_t offset = 0; offset < length; offset += 0x40) {
    (void)fixture.Tell("FW" + ToHex(offset, 8) + line);
  }
  Channel* link = fixture.Link();
  const auto read = link != nullptr ? link->ReadMemoryBlock(ApplicationStart(fixture), length, 1) : std::nullopt;
  if (!read) return {};
  std::string held;
  for (std::uint32_t offset = 0; offset < length; offset += 0x40)
    held += fixture.Tell("RX" + ToHex(offset, 8)).substr(10);
  std::string digits;
  for (const std::uint8_t byte : *read) digits += ToHex(byte, 2);
  return {true, digits == held.substr(0, digits.size()) && read->size() == length};
}

Attempt ReadList(Fixture& fixture) {
  const auto words = FreshWords(fixture, 60);
  (void)fixture.TellOwn("WO", Span("03", 2, words.size()) + Digits(words));
  (void)fixture.TellOwn("WO", Span("10", 3, 1) + Digits(std::span(words).first(2)));
  Channel* link = fixture.Link();
  const OperandListRequest records[] = {{.driverTypeCode = 3, .start = 2, .count = 60},
                                        {.driverTypeCode = 16, .start = 3, .count = 1}};
  const auto lists = link != nullptr ? link->ReadOperandList(records, 1) : std::nullopt;
  if (!lists) return {};
  std::string read;
  for (const std::uint32_t word : (*lists)[0]) read += ToHex(word, 4);
  return {true, read == Digits(words) && ToHex((*lists)[1].at(0), 8) == read.substr(0, 8)};
}

std::string ToText(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

void BeginProject(Fixture& fixture) {
  (void)fixture.TellBlock({66, 0, 0, 0, 0, "PASSWORD"});
  (void)fixture.TellBlock({2, 0, 0, 0, 0, "PASSWORD"});
}

// The number of topics that it has received so far is what changes from one run to the next.
Attempt ReadStatus(Fixture& fixture) {
  const sim::BlockRequest status{7, 0, 106, 0, 0, {}};
  BeginProject(fixture);
  for (int i = fixture.Fresh() % 50; i >= 0; --i) (void)fixture.TellBlock({65, 0, 1, 2, 0, "x"});
  const std::string before = fixture.TellBlock(status).payload;
  Channel* link = fixture.Link();
  DownloadEngine* engine = link != nullptr ? link->GetDownloadEngine() : nullptr;
  if (engine == nullptr) return {};
  engine->SetMessage({.opCode = 7, .dataLength = 106});
  if (!engine->Send() || engine->ReplyStatus() != kBlockDone) return {};
  const std::string read = ToText(engine->ReplyBytes());
  return {true, read == before || read == fixture.TellBlock(status).payload};
}

Attempt SendTopic(Fixture& fixture) {
  BeginProject(fixture);
  const std::string topic = "topic " + std::to_string(fixture.Fresh());
  Channel* link = fixture.Link();
  DownloadEngine* engine = link != nullptr ? link->GetDownloadEngine() : nullptr;
  if (engine == nullptr) return {};
  engine->SetMessage({.opCode = 65, .dataLength = static_cast<std::uint32_t>(topic.size()), .param3 = 2});
  const Bytes data(topic.begin(), topic.end());
  const bool isDone = engine->SendWithData(data) && engine->ReplyStatus() == kBlockDone;
  const int executions = fixture.controller->MostBlockExecutions();
  return {isDone, !isDone || executions == 1 || fixture.controller->HasRestarted(), executions};
}

Attempt AskInformation(Fixture& fixture) {
  FlipState(fixture);
  const char before = fixture.TellOwn("IN").at(8);
  Channel* link = fixture.Link();
  const auto info = link != nullptr ? link->GetControllerInfo(1) : std::nullopt;
  return {info.has_value(), !info || info->state == before || info->state == fixture.TellOwn("IN").at(8)};
}

// From the other state.
template <bool (Channel::*operation)(std::uint8_t), char state>
Attempt Control(Fixture& fixture) {
  (void)fixture.Tell(state == 'S' ? "CCR" : "CCS");
  Channel* link = fixture.Link();
  const bool isDone = link != nullptr && (link->*operation)(1);
  const int executions = fixture.controller->MostExecutions();
  const bool isInState = fixture.TellOwn("IN").at(8) == state || fixture.controller->HasRestarted();
  constexpr bool kRestarts = operation == &Channel::ResetController;
  return {isDone, !isDone || (executions == 1 && isInState), executions, kRestarts};
}

// clang-format off
constexpr Request kRequests[] = {
    // name                model   fault on  pieces once   read
    {"settled read",       "Q50",  "DR",     1,     false, true,  ReadSystemBytes},
    {"settled once",       "K670", "PV",     1,     true,  false, PrepareDownload},
    {"settled placing",    "Q50",  "FW",     1,     false, false, WriteFlash},
    {"typed read",         "Q50",  "RO",     1,     false, true,  ReadWords},
    {"typed write",        "Q50",  "WO",     1,     true,  false, WriteWords},
    {"typed write, Aurex", "K670", "WO",     1,     true,  false, WriteWords},
    {"memory as text",     "Q50",  "RM",     2,     false, true,  ReadMemory<700>},
    {"memory as block",    "K670", "block",  1,     false, true,  ReadMemory<4096>},
    {"operand list",       "K670", "block",  1,     false, true,  ReadList},
    {"block status",       "K670", "block",  2,     false, true,  ReadStatus},
    {"block write",        "K670", "block",  2,     true,  false, SendTopic},
    {"information",        "Q50",  "IN",     1,     false, true,  AskInformation},
    {"stop",               "Q50",  "CC",     1,     true,  false, Control<&Channel::StopController, 'S'>},
    {"run",                "K670", "CC",     1,     true,  false, Control<&Channel::RunController, 'R'>},
    {"reset",              "K670", "CC",     1,     true,  false, Control<&Channel::ResetController, 'R'>},
};
// clang-format on

}  // namespace

std::span<const Request> AllRequests() {
  return kRequests;
}

Attempt RunJudged(Fixture& fixture, const Request& request) {
  fixture.controller->ForgetCounts();
  const int calls = fixture.CallsBefore() + request.pieces;
  const Instant start = fixture.pacer.Now();
  const Attempt attempt = request.run(fixture);
  EXPECT_LE(fixture.pacer.Now() - start, fixture.Longest(calls, start, attempt.restarts)) << request.name;
  EXPECT_TRUE(attempt.isRight || fixture.controller->HasLied()) << request.name << ": wrong or stale";
  EXPECT_TRUE(!request.isOnce || attempt.executions <= 1) << request.name << ": done twice";
  if (attempt.restarts) fixture.pacer.Sleep(std::chrono::milliseconds(300));
  return attempt;
}

}  // namespace kv::matrix
