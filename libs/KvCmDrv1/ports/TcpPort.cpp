#include "KvCmDrv1/ports/TcpPort.h"

#include <utility>

#include "KvCmDrv1/ports/PortErrors.h"
#include "KvCmDrv1/ports/TcpConnect.h"

namespace kv {

TcpPort::TcpPort(std::string host, std::uint16_t port, Pacer& pacer)
    : mHost(std::move(host)), mPort(port), mPacer(pacer) {}

std::expected<void, PortError> TcpPort::Open(Duration limit) {
  Close();
  mLoss = {};
  if (mHost.empty()) return std::unexpected(NoHostError());  // the system would take this computer for it
  auto socket = ConnectTcp(mHost, mPort, limit, mPacer);
  if (!socket) return std::unexpected(ConnectError(Description(), socket.error()));
  mSocket = std::move(*socket);
  return {};
}

Port::Result TcpPort::Write(std::string_view& bytes, Duration slice) {
  return mSocket.IsOpen() ? Handle(mSocket.Write(bytes, slice)) : Result::Lost;
}

Port::Result TcpPort::Read(std::string& buffer, Duration slice) {
  return mSocket.IsOpen() ? Handle(mSocket.Read(buffer, slice)) : Result::Lost;
}

Port::Result TcpPort::Handle(Result result) {
  if (result == Result::Lost) mLoss = ConnectionLossError(Description(), mSocket.LossCode());
  return result;
}

std::string TcpPort::Description() const {
  return EndpointText(mHost, mPort);
}

}  // namespace kv
