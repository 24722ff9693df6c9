#include "FakeController.h"

#include <algorithm>

#include "base/Crc32.h"
#include "base/Numbers.h"

namespace kv {
namespace {

using namespace std::chrono_literals;
constexpr Duration kReplyTime = 2ms;

bool HasTag(const std::string& text) {
  for (const char* letters : {"RO", "WO", "RM", "IN", "AC", "SY"}) {
    if (text.starts_with(letters)) return true;
  }
  return false;
}

bool IsRead(const std::string& text) {
  for (const char* letters : {"RO", "RM", "IN", "AC", "SY", "ID", "DRS", "GI", "RX", "FI", "OSS"}) {
    if (text.starts_with(letters)) return true;
  }
  return false;
}

// What a request asks for, whichever tag it carries.
std::string WithoutTag(const std::string& text) {
  return HasTag(text) ? text.substr(0, 2) + text.substr(6, text.size() - 14) : text;
}

std::string Frame(std::uint8_t unit, const std::string& text) {
  const std::string body = ToHex(unit, 2) + text;
  unsigned sum = 0;
  for (const char c : body) sum += static_cast<unsigned char>(c);
  return "/" + body + ToHex(sum, 2) + "\r";
}

std::string Number(std::uint32_t value, int bytes) {
  std::string text;
  for (; bytes > 0; --bytes, value >>= 8) text += static_cast<char>(value & 0xFF);
  return text;
}

std::uint32_t NumberAt(const std::string& bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = count; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

// Two characters changed by amounts that cancel each other.
std::string WithHiddenDamage(std::string frame) {
  if (frame[0] != '/') {
    frame[frame.size() - 1] = static_cast<char>(frame[frame.size() - 1] ^ 0x10);
    return frame;
  }
  std::size_t at = 4;
  while (frame[at] >= 'F' || frame[at + 1] <= '0') ++at;
  ++frame[at];
  --frame[at + 1];
  return frame;
}

}  // namespace

bool FakeController::Connect() {
  if (!isReachable) return false;
  mIsConnected = true;
  mHasAccess = mIsGarbage = false;
  mIn.clear();
  mOut.clear();
  mLastBlock.clear();
  ++connections;
  return true;
}

void FakeController::PowerUp() {
  mCounter = 0;
  mLastWrite = "000000000000" + ToHex(++mPowerUp, 4);
  mHasAccess = false;
}

void FakeController::Arrive(std::string_view bytes) {
  mIn += bytes;
  while (!mIn.empty()) {
    if (mIn[0] == '/') {
      const std::size_t end = mIn.find('\r');
      if (end == std::string::npos) return;
      const std::string frame = mIn.substr(0, end + 1);
      mIn.erase(0, end + 1);
      HandleFrame(frame);
    } else {
      if (mIn.size() < 28) return;
      const std::size_t length = 32 + NumberAt(mIn, 22, 4);
      if (mIn.size() < length) return;
      const std::string message = mIn.substr(0, length);
      mIn.erase(0, length);
      HandleBlock(message);
    }
  }
}

void FakeController::HandleFrame(const std::string& frame) {
  const std::string text = frame.substr(3, frame.size() - 6);
  const Fault fault = faultOf(text);
  if (fault == Fault::NotHeard) return;
  if (fault == Fault::LostBefore) return CutLink();
  const bool isRefused = fault == Fault::Refused;
  ++mCounter;
  std::string reply;
  if (isRefused) {
    reply = text.substr(0, 2) + "ERROR0A";
  } else {
    reply = Execute(text);
  }
  const std::string sealed = FrameOf(text, reply, 1);
  if (!IsRead(text)) mLastWrite = ToHex(mCounter, 4) + ToHex(Crc32(text), 8) + ToHex(mPowerUp, 4) + reply.substr(0, 40);
  if (fault == Fault::Restarted) PowerUp();
  Deliver(fault, frame, fault == Fault::WrongUnit ? FrameOf(text, reply, 2) : sealed);
}

std::string FakeController::FrameOf(const std::string& requestText, const std::string& replyText, std::uint8_t unit) {
  const std::string counter = ToHex(mCounter, 4);
  const std::uint32_t check = Crc32(requestText + "\r" + ToHex(unit, 2) + replyText + counter);
  return Frame(unit, replyText + counter + ToHex(check, 8));
}

std::string FakeController::Execute(const std::string& text) {
  executed.push_back(text);
  const std::string echo = text.substr(0, std::min<std::size_t>(6, text.size()));
  const bool needsAccess = text.starts_with("CC") || text.starts_with("WO");
  if (needsAccess && !password.empty() && !mHasAccess) return text.substr(0, 2) + "ERROR07";
  if (!IsRead(text)) ++timesExecuted[WithoutTag(text)];
  if (text == "ID") return "ID" + model + "|20|4.60|07";
  if (text.starts_with("CC")) return "CCOK";
  if (text.starts_with("LN")) return "LNOK";
  if (text.starts_with("SY")) return echo + mLastWrite;
  if (text.starts_with("IN")) return echo + ToHex(serial, 8) + "R";
  if (text.starts_with("AC")) {
    std::string given;
    for (std::size_t at = 6; at < 22; at += 2) given += static_cast<char>(*ParseHex(text.substr(at, 2)));
    mHasAccess = given == (password + std::string(8, ' ')).substr(0, 8);
    return mHasAccess ? echo + "OK" : "ACERROR08";
  }
  if (text.starts_with("WO")) return text.substr(0, 16) + "OK";
  if (text.starts_with("RO")) {
    std::string values;
    const std::uint32_t start = *ParseHex(text.substr(8, 4));
    for (std::uint32_t i = 0; i < *ParseHex(text.substr(12, 4)); ++i) values += ToHex(start + i, 4);
    return text.substr(0, 16) + values;
  }
  if (text.starts_with("RM")) {
    std::string bytes;
    const std::uint32_t address = *ParseHex(text.substr(6, 8));
    for (std::uint32_t i = 0; i < *ParseHex(text.substr(14, 4)); ++i) bytes += ToHex((address + i) ^ memoryXor, 2);
    return text.substr(0, 18) + bytes;
  }
  return text.substr(0, 2) + "ERROR01";
}

void FakeController::HandleBlock(const std::string& message) {
  const std::uint32_t opCode = NumberAt(message, 8, 2);
  const std::string name = "block " + std::to_string(opCode);
  const Fault fault = faultOf(name + " " + std::to_string(NumberAt(message, 14, 4)));
  if (fault == Fault::NotHeard) return;
  if (fault == Fault::LostBefore) return CutLink();
  if (message != mLastBlock) {
    executed.push_back(name);
    ++timesExecuted[name];
    std::string payload;
    if (opCode == 256) payload = listPayload();
    if (opCode == 257) {
      const std::uint32_t address = NumberAt(message, 10, 4);
      for (std::uint32_t i = 0; i < NumberAt(message, 14, 4); ++i)
        payload += static_cast<char>((address + i) ^ memoryXor);
    }
    std::string reply = message.substr(0, 22);
    reply[3] = 2;
    reply[5] = fault == Fault::Refused ? 5 : 10;
    reply += Number(static_cast<std::uint32_t>(payload.size()), 4);
    reply += Number(Crc32(reply) & 0xFFFF, 2) + payload;
    mLastBlockReply = reply + Number(Crc32(reply), 4);
    mLastBlock = message;
  }
  std::string reply = mLastBlockReply;
  if (fault == Fault::WrongUnit) reply[4] = 2;
  if (fault == Fault::Restarted) PowerUp();
  Deliver(fault, message, reply);
}

void FakeController::Deliver(Fault fault, const std::string& request, const std::string& reply) {
  switch (fault) {
    case Fault::NoReply:
    case Fault::Restarted:
      break;
    case Fault::Late:
      Push(700ms, reply);
      break;
    case Fault::Doubled:
      Push(kReplyTime, reply + reply);
      break;
    case Fault::Dribbled:
      for (std::size_t i = 0; i < reply.size(); ++i) Push(2ms * (i + 1), reply.substr(i, 1));
      break;
    case Fault::Cut:
      Push(kReplyTime, reply.substr(0, reply.size() / 2));
      break;
    case Fault::Damaged:
      Push(kReplyTime, WithHiddenDamage(reply));
      break;
    case Fault::Echo:
      Push(kReplyTime, request + reply);
      break;
    case Fault::OldReply:
      Push(kReplyTime, mPreviousReply + reply);
      break;
    case Fault::Garbage:
      mIsGarbage = true;
      break;
    case Fault::LostAfter:
      CutLink();
      break;
    default:
      Push(kReplyTime, reply);
      break;
  }
  if (fault != Fault::Garbage) mIsGarbage = false;
  mPreviousReply = reply;
}

std::string FakeController::Take() {
  std::string bytes;
  while (!mOut.empty() && mOut.front().first <= mPacer.Now()) {
    bytes += mOut.front().second;
    mOut.pop_front();
  }
  if (mIsGarbage) bytes += "/01\xB4K/0\r\x01";
  return bytes;
}

std::optional<Instant> FakeController::NextEvent() const {
  if (mOut.empty()) return std::nullopt;
  return mOut.front().first;
}

std::expected<void, PortError> FakePort::Open(Duration) {
  mIsOpen = mController.Connect();
  if (!mIsOpen) return std::unexpected(PortError{"nobody is there", "the test", "none"});
  return {};
}

Port::Result FakePort::Write(std::string_view& bytes, Duration) {
  if (!mIsOpen || !mController.IsConnected()) return Result::Lost;
  mController.Arrive(bytes);
  bytes = {};
  return Result::Done;
}

Port::Result FakePort::Read(std::string& buffer, Duration slice) {
  const Instant end = mPacer.Now() + slice;
  while (true) {
    if (!mIsOpen) return Result::Lost;
    const std::string bytes = mController.Take();
    if (!bytes.empty()) {
      if (slice > Duration{}) mPacer.Sleep(Duration(100));  // bytes take their time, or garbage would stop the clock
      buffer += bytes;
      return Result::Done;
    }
    if (!mController.IsConnected()) return Result::Lost;
    if (mPacer.Now() >= end) return Result::Nothing;
    const Instant next = std::clamp(mController.NextEvent().value_or(end), mPacer.Now() + Duration(1), end);
    mPacer.Sleep(next - mPacer.Now());
  }
}

}  // namespace kv
