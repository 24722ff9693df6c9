#pragma once

#include <memory>
#include <utility>

#include "KvCmDrv1/ports/ModemPort.h"
#include "KvCmDrv1/ports/SimulatedPort.h"
#include "simulator/SimulatedModem.h"

namespace kv::test {

// The port of such a link, at whose other end is a simulated controller; a modem is simulated, too.
inline std::unique_ptr<Port> PortTo(std::unique_ptr<InProcessLine> line, const LinkSettings& link, Pacer& pacer) {
  const bool isModem = link.transport == Transport::Modem;
  if (isModem) line = std::make_unique<sim::SimulatedModem>(std::move(line), sim::ModemOptions());
  auto port = std::make_unique<SimulatedPort>(std::move(line), "", pacer);
  (void)port->SetBaudRate(link.baudRate);
  if (!isModem) return port;
  return std::make_unique<ModemPort>(std::move(port), link.modem, pacer);
}

}  // namespace kv::test
