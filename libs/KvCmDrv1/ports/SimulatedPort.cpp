#include "KvCmDrv1/ports/SimulatedPort.h"

#include <algorithm>

namespace kv {

SimulatedPort::SimulatedPort(std::shared_ptr<InProcessLine> line, std::string model, Pacer& pacer)
    : mLine(std::move(line)), mModel(std::move(model)), mPacer(pacer) {}

SimulatedPort::~SimulatedPort() {
  Close();
}

std::expected<void, PortError> SimulatedPort::Open(Duration) {
  Close();
  mLoss = {};
  if (!mLine) {
    return std::unexpected(PortError{"there is no simulated controller \"" + mModel + "\"",
                                     "the model is misspelt, or this program has no simulated controllers",
                                     "choose one of the models in the communication settings"});
  }
  if (!mLine->Connect(mPacer.Now())) {
    return std::unexpected(PortError{"the simulated controller does not take the connection",
                                     "it was told to be out of reach, or is restarting", "try again"});
  }
  mIsOpen = true;
  return {};
}

void SimulatedPort::Close() {
  if (mIsOpen) mLine->Disconnect(mPacer.Now());
  mIsOpen = false;
}

Port::Result SimulatedPort::Write(std::string_view& bytes, Duration) {
  if (!mIsOpen || !mLine->IsConnected()) return Lose();
  mLine->Write(bytes, mPacer.Now());
  bytes = {};
  return Result::Done;
}

Port::Result SimulatedPort::Read(std::string& buffer, Duration slice) {
  if (!mIsOpen) return Lose();
  const Instant end = mPacer.Now() + slice;
  while (true) {
    const Instant now = mPacer.Now();
    const std::string arrived = mLine->Read(now);
    if (!arrived.empty()) {
      buffer += arrived;
      return Result::Done;
    }
    if (!mLine->IsConnected()) return Lose();
    if (now >= end) return Result::Nothing;
    const Instant next = std::clamp(mLine->NextEvent().value_or(end), now + Duration(1), end);
    mPacer.Sleep(next - now);
  }
}

bool SimulatedPort::SetBaudRate(int baudRate) {
  constexpr Duration kTenBits = std::chrono::seconds(10);
  if (!mLine || baudRate <= 0) return false;
  mLine->SetBaud(baudRate);
  mByteTime = Duration((kTenBits.count() + baudRate - 1) / baudRate);
  return true;
}

Port::Result SimulatedPort::Lose() {
  mIsOpen = false;
  mLoss = {"the simulated controller has cut the connection", "it restarts, or was told to cut it", "try again"};
  return Result::Lost;
}

}  // namespace kv
