#include "Requests.h"

#include "base/Numbers.h"

namespace kv::matrix {
namespace {

std::vector<std::int16_t> FreshWords(Bench& bench, std::size_t count) {
  std::vector<std::int16_t> words(count);
  for (std::int16_t& word : words) word = static_cast<std::int16_t>(bench.Fresh());
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
void FlipState(Bench& bench) {
  (void)bench.Tell(bench.Fresh() % 2 == 0 ? "CCR" : "CCS");
}

Attempt JudgeText(Bench& bench, std::string_view command, const std::string& before) {
  Channel* link = bench.Link();
  const auto reply = link != nullptr ? link->SendCommand(command) : std::nullopt;
  if (!reply || reply->IsError()) return {};
  const std::string text = reply->text.substr(0, reply->text.size() - 2);
  // The power may have failed between the answer and now.
  return {true, text == before || text == bench.Tell(command)};
}

Attempt ReadSystemBytes(Bench& bench) {
  FlipState(bench);
  return JudgeText(bench, "DRS000020", bench.Tell("DRS000020"));
}

Attempt PrepareDownload(Bench& bench) {
  Attempt attempt = JudgeText(bench, "PV000A", "PVOK");
  attempt.executions = bench.controller->MostExecutions();
  return attempt;
}

Attempt WriteFlash(Bench& bench) {
  (void)bench.Tell("CCS");
  const std::string data = ToHex(bench.Fresh(), 4) + ToHex(bench.Fresh(), 4);
  Attempt attempt = JudgeText(bench, "FW00000040" + data, "FWOK");
  if (attempt.isDone) attempt.isRight = attempt.isRight && bench.Tell("RX00000040").substr(10, 8) == data;
  return attempt;
}

Attempt ReadWords(Bench& bench) {
  const auto words = FreshWords(bench, 60);
  (void)bench.TellOwn("WO", Span("03", 2, words.size()) + Digits(words));
  Channel* link = bench.Link();
  const auto read = link != nullptr ? link->ReadMI(2, 60, 1) : std::nullopt;
  return {read.has_value(), !read || *read == words};
}

Attempt WriteWords(Bench& bench) {
  const auto words = FreshWords(bench, 3);
  Channel* link = bench.Link();
  const bool isDone = link != nullptr && link->WriteMI(7, words, 1);
  const std::string held = bench.TellOwn("RO", Span("03", 7, words.size()));
  return {isDone, !isDone || held.substr(10) == Digits(words), bench.controller->MostExecutions()};
}

// Where the application memory begins, by the segment table.
std::uint32_t ApplicationStart(Bench& bench) {
  std::string password = Bench::kPassword;
  password.resize(8, ' ');
  const std::string table = bench.Tell("GI" + password);
  return ParseHex(std::string_view(table).substr(table.find("APF") + 3, 8)).value_or(0);
}

Attempt ReadMemory(Bench& bench, std::uint32_t length) {
  (void)bench.Tell("CCS");
  const std::string line = ToHex(bench.Fresh(), 4) + ToHex(bench.Fresh(), 4);
  for (std::uint32_t offset = 0; offset < length; offset += 0x40) {
    (void)bench.Tell("FW" + ToHex(offset, 8) + line);
  }
  Channel* link = bench.Link();
  const auto read = link != nullptr ? link->ReadMemoryBlock(ApplicationStart(bench), length, 1) : std::nullopt;
  if (!read) return {};
  std::string held;
  for (std::uint32_t offset = 0; offset < length; offset += 0x40)
    held += bench.Tell("RX" + ToHex(offset, 8)).substr(10);
  std::string digits;
  for (const std::uint8_t byte : *read) digits += ToHex(byte, 2);
  return {true, digits == held.substr(0, digits.size()) && read->size() == length};
}

Attempt ReadMemoryAsText(Bench& bench) {
  return ReadMemory(bench, 700);
}

Attempt ReadMemoryAsBlock(Bench& bench) {
  return ReadMemory(bench, 4096);
}

Attempt ReadList(Bench& bench) {
  const auto words = FreshWords(bench, 60);
  (void)bench.TellOwn("WO", Span("03", 2, words.size()) + Digits(words));
  (void)bench.TellOwn("WO", Span("10", 3, 1) + Digits(std::span(words).first(2)));
  Channel* link = bench.Link();
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

void BeginProject(Bench& bench) {
  (void)bench.TellBlock({66, 0, 0, 0, 0, "PASSWORD"});
  (void)bench.TellBlock({2, 0, 0, 0, 0, "PASSWORD"});
}

// The number of topics that it has received so far is what changes from one run to the next.
Attempt ReadStatus(Bench& bench) {
  const sim::BlockRequest status{7, 0, 106, 0, 0, {}};
  BeginProject(bench);
  for (int i = bench.Fresh() % 50; i >= 0; --i) (void)bench.TellBlock({65, 0, 1, 2, 0, "x"});
  const std::string before = bench.TellBlock(status).payload;
  Channel* link = bench.Link();
  DownloadEngine* engine = link != nullptr ? link->GetDownloadEngine() : nullptr;
  if (engine == nullptr) return {};
  engine->SetMessage({.opCode = 7, .dataLength = 106});
  if (!engine->Send() || engine->ReplyStatus() != kBlockDone) return {};
  const std::string read = ToText(engine->ReplyBytes());
  return {true, read == before || read == bench.TellBlock(status).payload};
}

Attempt SendTopic(Bench& bench) {
  BeginProject(bench);
  const std::string topic = "topic " + std::to_string(bench.Fresh());
  Channel* link = bench.Link();
  DownloadEngine* engine = link != nullptr ? link->GetDownloadEngine() : nullptr;
  if (engine == nullptr) return {};
  engine->SetMessage({.opCode = 65, .dataLength = static_cast<std::uint32_t>(topic.size()), .param3 = 2});
  const Bytes data(topic.begin(), topic.end());
  const bool isDone = engine->SendWithData(data) && engine->ReplyStatus() == kBlockDone;
  const int executions = bench.controller->MostBlockExecutions();
  return {isDone, !isDone || executions == 1 || bench.controller->HasRestarted(), executions};
}

Attempt AskInformation(Bench& bench) {
  FlipState(bench);
  const char before = bench.TellOwn("IN").at(8);
  Channel* link = bench.Link();
  const auto info = link != nullptr ? link->GetControllerInfo(1) : std::nullopt;
  return {info.has_value(), !info || info->state == before || info->state == bench.TellOwn("IN").at(8)};
}

Attempt Control(Bench& bench, std::string_view before, bool (Channel::*operation)(std::uint8_t), char state) {
  (void)bench.Tell(before);
  Channel* link = bench.Link();
  const bool isDone = link != nullptr && (link->*operation)(1);
  const int executions = bench.controller->MostExecutions();
  const bool isInState = bench.TellOwn("IN").at(8) == state || bench.controller->HasRestarted();
  return {isDone, !isDone || (executions == 1 && isInState), executions};
}

Attempt Stop(Bench& bench) {
  return Control(bench, "CCR", &Channel::StopController, 'S');
}

Attempt Run(Bench& bench) {
  return Control(bench, "CCS", &Channel::RunController, 'R');
}

Attempt Reset(Bench& bench) {
  Attempt attempt = Control(bench, "CCS", &Channel::ResetController, 'R');
  attempt.restarts = true;
  return attempt;
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
    {"memory as text",     "Q50",  "RM",     2,     false, true,  ReadMemoryAsText},
    {"memory as block",    "K670", "block",  1,     false, true,  ReadMemoryAsBlock},
    {"operand list",       "K670", "block",  1,     false, true,  ReadList},
    {"block status",       "K670", "block",  2,     false, true,  ReadStatus},
    {"block write",        "K670", "block",  2,     true,  false, SendTopic},
    {"information",        "Q50",  "IN",     1,     false, true,  AskInformation},
    {"stop",               "Q50",  "CC",     1,     true,  false, Stop},
    {"run",                "K670", "CC",     1,     true,  false, Run},
    {"reset",              "K670", "CC",     1,     true,  false, Reset},
};
// clang-format on

}  // namespace

std::span<const Request> AllRequests() {
  return kRequests;
}

}  // namespace kv::matrix
