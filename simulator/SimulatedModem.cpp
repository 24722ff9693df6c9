#include "simulator/SimulatedModem.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sim {
namespace {

constexpr kv::Duration kGuardTime = std::chrono::seconds(1);
constexpr std::size_t kLongestCommand = 255;

constexpr std::array<std::string_view, 5> kDialAnswers{
    // in the order of DialResult
    "CONNECT 9600", "BUSY", "NO CARRIER", "NO DIALTONE", "NO ANSWER"};

}  // namespace

SimulatedModem::SimulatedModem(std::unique_ptr<kv::InProcessLine> controller, const ModemOptions& options)
    : mController(std::move(controller)), mOptions(options) {}

bool SimulatedModem::Connect(kv::Instant now) {
  Disconnect(now);
  mIsConnected = true;
  return true;
}

// Whoever lets go of the modem drops its call.
void SimulatedModem::Disconnect(kv::Instant now) {
  HangUp(now);
  mIsConnected = false;
  mEchoes = true;
  mCommand.clear();
  mOut.clear();
}

void SimulatedModem::Write(std::string_view bytes, kv::Instant now) {
  if (!mIsConnected) return;
  Advance(now);
  while (!bytes.empty()) {
    if (mState == State::Online) {
      WatchForEscape(bytes, now);
      mController->Write(bytes, now);
      return;
    }
    TakeCommandByte(bytes.front(), now);
    bytes.remove_prefix(1);
  }
}

std::string SimulatedModem::Read(kv::Instant now) {
  if (!mIsConnected) return {};
  Advance(now);
  std::string bytes = std::exchange(mOut, {});
  if (mState != State::Online) return bytes;
  bytes += mController->Read(now);
  if (!mController->IsConnected()) {
    HangUp(now);
    Answer("NO CARRIER");
    bytes += std::exchange(mOut, {});
  }
  return bytes;
}

std::optional<kv::Instant> SimulatedModem::NextEvent() const {
  if (!mIsConnected) return std::nullopt;
  if (!mOut.empty()) return kv::Instant{};  // at once
  auto next = mDue;
  if (mState == State::Online) {
    if (!mController->IsConnected()) return kv::Instant{};
    const auto arrival = mController->NextEvent();
    if (arrival && (!next || *arrival < *next)) next = arrival;
  }
  return next;
}

void SimulatedModem::Advance(kv::Instant now) {
  if (!mDue || now < *mDue) return;
  mDue.reset();
  if (mState == State::Dialling) {
    EndDialling(now);
  } else if (mState == State::Online) {
    mState = State::Escaped;
    Answer("OK");
  }
}

void SimulatedModem::EndDialling(kv::Instant now) {
  mState = State::Command;
  auto result = mOptions.result;
  if (result == DialResult::Connect && !mController->Connect(now)) result = DialResult::NoAnswer;
  if (result == DialResult::Connect) mState = State::Online;
  mLastByte.reset();
  mPluses = 0;
  Answer(kDialAnswers[static_cast<std::size_t>(result)]);
}

void SimulatedModem::TakeCommandByte(char byte, kv::Instant now) {
  if (mState == State::Dialling) {
    mState = State::Command;
    mDue.reset();
    Answer("NO CARRIER");
    return;
  }
  if (mEchoes) mOut += byte;
  if (byte == '\r') {
    Execute(std::exchange(mCommand, {}), now);
  } else if (byte != '\n' && mCommand.size() < kLongestCommand) {
    mCommand += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
  }
}

void SimulatedModem::Execute(std::string command, kv::Instant now) {
  if (!command.starts_with("AT")) return;  // a modem passes over what does not call for its attention
  command.erase(0, 2);
  if (command.starts_with("D")) {
    if (command.find_first_of("0123456789") == std::string::npos) return Answer("ERROR");
    HangUp(now);
    mState = State::Dialling;
    mDue = now + mOptions.dialTime;
    return;
  }
  if (command == "O" && mState == State::Escaped) {
    mState = State::Online;
    return Answer(kDialAnswers[0]);
  }
  if (command.starts_with("H") || command.starts_with("Z")) HangUp(now);
  if (command.starts_with("Z")) mEchoes = true;
  if (command == "E0") mEchoes = false;
  if (command == "E1") mEchoes = true;
  Answer("OK");
}

// The pluses themselves reach the other end like any other byte.
void SimulatedModem::WatchForEscape(std::string_view bytes, kv::Instant now) {
  const bool wasSilent = !mLastByte || now - *mLastByte >= kGuardTime;
  const bool isPluses = bytes.find_first_not_of('+') == std::string_view::npos;
  mPluses =
      isPluses && (wasSilent || mPluses > 0) ? mPluses + static_cast<int>(std::min<std::size_t>(bytes.size(), 4)) : 0;
  mLastByte = now;
  mDue.reset();
  if (mPluses == 3) mDue = now + kGuardTime;
  if (mPluses > 3) mPluses = 0;
}

void SimulatedModem::HangUp(kv::Instant now) {
  if (mState == State::Online || mState == State::Escaped) mController->Disconnect(now);
  mState = State::Command;
  mDue.reset();
}

void SimulatedModem::Answer(std::string_view text) {
  mOut += "\r\n";
  mOut += text;
  mOut += "\r\n";
}

}  // namespace sim
