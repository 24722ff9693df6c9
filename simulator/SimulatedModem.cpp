#include "simulator/SimulatedModem.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sim {
namespace {

constexpr kv::Duration kGuardTime = std::chrono::seconds(1);
constexpr std::size_t kLongestCommand = 255;

}  // namespace

// An answer in words and as a number.
struct SimulatedModem::ResultCode {
  std::string_view word;
  char number;

  static const ResultCode kOk, kNoCarrier, kError;
  static const std::array<ResultCode, 5> kDialling;  // in the order of DialResult
};

constexpr SimulatedModem::ResultCode SimulatedModem::ResultCode::kOk{"OK", '0'};
constexpr SimulatedModem::ResultCode SimulatedModem::ResultCode::kNoCarrier{"NO CARRIER", '3'};
constexpr SimulatedModem::ResultCode SimulatedModem::ResultCode::kError{"ERROR", '4'};
constexpr std::array<SimulatedModem::ResultCode, 5> SimulatedModem::ResultCode::kDialling{
    {{"CONNECT 9600", '1'}, {"BUSY", '7'}, {"NO CARRIER", '3'}, {"NO DIALTONE", '6'}, {"NO ANSWER", '8'}}};

SimulatedModem::SimulatedModem(std::unique_ptr<kv::InProcessLine> controller, const ModemOptions& options)
    : mController(std::move(controller)), mOptions(options) {
  UseProfile(options.answers);
}

bool SimulatedModem::Connect(kv::Instant now) {
  Disconnect(now);
  mIsConnected = true;
  return true;
}

// Whoever lets go of the modem drops its call.
void SimulatedModem::Disconnect(kv::Instant now) {
  HangUp(now);
  mIsConnected = false;
  UseProfile(mOptions.answers);
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
    Answer(ResultCode::kNoCarrier);
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
    Answer(ResultCode::kOk);
  }
}

void SimulatedModem::EndDialling(kv::Instant now) {
  mState = State::Command;
  auto result = mOptions.result;
  if (result == DialResult::Connect && !mController->Connect(now)) result = DialResult::NoAnswer;
  if (result == DialResult::Connect) mState = State::Online;
  mLastByte.reset();
  mPluses = 0;
  Answer(ResultCode::kDialling[static_cast<std::size_t>(result)]);
}

void SimulatedModem::TakeCommandByte(char byte, kv::Instant now) {
  if (mState == State::Dialling) {
    mState = State::Command;
    mDue.reset();
    Answer(ResultCode::kNoCarrier);
    return;
  }
  if (mEchoes) mOut += byte;
  if (byte == '\r') {
    Execute(std::exchange(mCommand, {}), now);
  } else if (byte != '\n' && mCommand.size() < kLongestCommand) {
    mCommand += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
  }
}

void SimulatedModem::Execute(std::string_view line, kv::Instant now) {
  if (!line.starts_with("AT")) return;  // a modem passes over what does not call for its attention
  line.remove_prefix(2);
  while (!line.empty()) {
    const char letter = line.front();
    line.remove_prefix(1);
    if (letter == 'D') return Dial(line, now);
    if (letter == '+') break;  // of a mobile modem: takes the rest of the line
    if (letter == 'O' && mState == State::Escaped) {
      mState = State::Online;
      return Answer(ResultCode::kDialling.front());
    }
    if (letter == '&' && line.starts_with('F')) UseProfile(ModemAnswers::Words);
    const auto end = std::min(line.find_first_not_of("0123456789"), line.size());
    Set(letter, line.substr(0, end).find_first_not_of('0') < end, now);
    line.remove_prefix(end);
  }
  Answer(ResultCode::kOk);
}

void SimulatedModem::Dial(std::string_view number, kv::Instant now) {
  if (number.find_first_of("0123456789") == std::string_view::npos) return Answer(ResultCode::kError);
  HangUp(now);
  mState = State::Dialling;
  mDue = now + mOptions.dialTime;
}

void SimulatedModem::Set(char letter, bool isOn, kv::Instant now) {
  if (letter == 'E') mEchoes = isOn;
  if (letter == 'Q') mIsQuiet = isOn;
  if (letter == 'V') mUsesNumbers = !isOn;
  if (letter == 'H' || letter == 'Z') HangUp(now);
  if (letter == 'Z') UseProfile(mOptions.answers);
}

void SimulatedModem::UseProfile(ModemAnswers answers) {
  mEchoes = true;
  mIsQuiet = answers == ModemAnswers::None;
  mUsesNumbers = answers == ModemAnswers::Numbers;
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

void SimulatedModem::Answer(ResultCode code) {
  if (mIsQuiet) return;
  if (mUsesNumbers) {
    mOut += code.number;
    mOut += '\r';
    return;
  }
  mOut += "\r\n";
  mOut += code.word;
  mOut += "\r\n";
}

}  // namespace sim
