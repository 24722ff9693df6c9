#include "KvCmDrv1/ports/ListeningPort.h"

#include <utility>

#include "KvCmDrv1/ports/PortErrors.h"

namespace kv {
namespace {

using State = ListeningSocket::State;

constexpr Duration kSlice = std::chrono::milliseconds(20);  // a controller that dials in waits far longer

}  // namespace

ListeningPort::ListeningPort(ListeningSocketImpl& socket, std::uint16_t port, Pacer& pacer)
    : mSocket(socket), mPort(port), mPacer(pacer) {}

std::expected<void, PortError> ListeningPort::Open(Duration limit) {
  mLoss = {};
  mIsInUse = true;
  const std::string place = "TCP port " + std::to_string(mPort);
  const Instant deadline = mPacer.Now() + limit;
  for (;;) {
    if (!Listens() && !mSocket.Listen(mPort)) {
      return std::unexpected(PortError{place + " cannot be listened on",
                                       "another program listens there, or the port needs more rights",
                                       "close the other program, or choose another TCP port for the controllers"});
    }
    mSocket.Poll();
    if (mSocket.GetState() == State::Requested && !mSocket.OnConnectionRequest) {
      (void)mSocket.Accept(mSocket.RequestId());  // one that has gone again is waited for like any other
    }
    if (mSocket.GetState() == State::Connected) break;
    if (mPacer.StopRequested()) {
      return std::unexpected(
          PortError{"listening on " + place + " was stopped", "it was asked to end", "connect again"});
    }
    if (mPacer.Now() >= deadline) {
      return std::unexpected(
          PortError{"no controller has dialled in on " + place,
                    "the controller is switched off, dials another address, or a firewall is between",
                    "check the address and TCP port that the controller dials"});
    }
    mPacer.Sleep(kSlice);
  }
  mConnectionNumber = mSocket.ConnectionNumber();
  return {};
}

bool ListeningPort::Listens() const {
  return mSocket.GetState() != State::Closed && mSocket.LocalPort() == mPort;
}

void ListeningPort::Close() {
  mConnectionNumber = 0;
  if (std::exchange(mIsInUse, false) && mSocket.LocalPort() == mPort) mSocket.Stop();
}

void ListeningPort::DropPartner() {
  if (IsOpen()) mSocket.DropConnection();
  mConnectionNumber = 0;
}

bool ListeningPort::HasNewerCall() {
  if (!IsOpen()) return false;
  mSocket.Poll();
  if (!IsOpen() || !mSocket.HasNewerCaller()) return false;
  mLoss = {mSocket.PartnerText() + " does not answer, and a newer call has come",
           "the controller lost power or its network, and has dialled in again", "connect again"};
  return true;
}

bool ListeningPort::IsOpen() const {
  return mConnectionNumber != 0 && mSocket.GetState() == State::Connected && mSocket.Connection().IsOpen() &&
         mSocket.ConnectionNumber() == mConnectionNumber;
}

Port::Result ListeningPort::Write(std::string_view& bytes, Duration slice) {
  return Handle(IsOpen() ? mSocket.Connection().Write(bytes, slice) : Result::Lost);
}

Port::Result ListeningPort::Read(std::string& buffer, Duration slice) {
  return Handle(IsOpen() ? mSocket.Connection().Read(buffer, slice) : Result::Lost);
}

Port::Result ListeningPort::Handle(Result result) {
  if (result == Result::Lost && mConnectionNumber != 0) {
    mConnectionNumber = 0;
    mLoss = ConnectionLossError(mSocket.PartnerText(), mSocket.Connection().LossCode());
  }
  return result;
}

std::string ListeningPort::Description() const {
  return IsOpen() ? mSocket.PartnerText() + " (dialled in)" : "TCP port " + std::to_string(mPort) + " (listening)";
}

}  // namespace kv
