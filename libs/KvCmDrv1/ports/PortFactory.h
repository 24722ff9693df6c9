#pragma once

#include <functional>
#include <memory>

#include "KvCmDrv1/LinkSettings.h"
#include "KvCmDrv1/ports/Port.h"
#include "desktop/Pacer.h"
#include "link/ListeningSocket.h"

namespace kv {

// The closed port that `settings` describe: TCP, serial, modem or listening. Null for a simulated link, which needs no
// port of the machine, and for a listening link without a socket.
//
// `socket` is the session's listening socket; only a listening link uses it. It and `pacer` must outlive the port.
[[nodiscard]] std::unique_ptr<Port> MakePort(const LinkSettings& settings, Pacer& pacer, ListeningSocket* socket);

// How the driver is given its ports; MakePort is the one of the programs, tests give their own.
using PortMaker =
    std::function<std::unique_ptr<Port>(const LinkSettings& settings, Pacer& pacer, ListeningSocket* socket)>;

}  // namespace kv
