#include "KvCmDrv1/ports/PortFactory.h"

#include "KvCmDrv1/ports/ListeningPort.h"
#include "KvCmDrv1/ports/ListeningSocketImpl.h"
#include "KvCmDrv1/ports/ModemPort.h"
#include "KvCmDrv1/ports/SerialPort.h"
#include "KvCmDrv1/ports/TcpPort.h"

namespace kv {
namespace {

std::unique_ptr<Port> MakeSerialPort(const LinkSettings& settings) {
  return std::make_unique<SerialPort>(settings.serialPort, settings.baudRate, settings.framing);
}

}  // namespace

std::unique_ptr<Port> MakePort(const LinkSettings& settings, Pacer& pacer, ListeningSocket* socket) {
  switch (settings.transport) {
    case Transport::Tcp:
      return std::make_unique<TcpPort>(settings.host, settings.tcpPort, pacer);
    case Transport::Serial:
      return MakeSerialPort(settings);
    case Transport::Modem:
      return std::make_unique<ModemPort>(MakeSerialPort(settings), settings.modem, pacer);
    case Transport::Listen: {
      auto* ours = dynamic_cast<ListeningSocketImpl*>(socket);
      return ours ? std::make_unique<ListeningPort>(*ours, settings.tcpPort, pacer) : nullptr;
    }
    case Transport::Simulated:
      break;
  }
  return nullptr;
}

}  // namespace kv
