#include <iostream>

#include "KvCmDrv1/ports/PortList.h"
#include "apps/kvtele/ConsoleEdge.h"
#include "apps/kvtele/DriverMaker.h"
#include "apps/kvtele/KvTele.h"
#include "base/ProgramPaths.h"
#include "desktop/PacerWallClock.h"
#include "desktop/console/ConsolePacer.h"

int main(int argc, char** argv) {
  using namespace kv;
  const cli::ConsoleSetup setup;
  ConsolePacer pacer;
  const PacerWallClock clock;
  TerminalInput input;
  cli::DriverMaker drivers(pacer, std::cerr);
  cli::Environment environment{
      .out = std::cout,
      .err = std::cerr,
      .errIsTerminal = cli::ErrorIsTerminal(),
      .input = input,
      .pacer = pacer,
      .clock = clock,
      .home = ExecutableFolder(),
      .makeDriver = [&drivers](const cli::DriverOrder& order) { return drivers.Make(order); },
      .listSerialPorts = ListSerialPorts,
  };
  return static_cast<int>(cli::RunKvTele(cli::Utf8Arguments(argc, argv), environment));
}
