#include <iostream>

#include "KvCmDrv1/ports/PortList.h"
#include "apps/kvtele/ConsoleEdge.h"
#include "apps/kvtele/DriverMaker.h"
#include "apps/kvtele/KvTele.h"
#include "base/ProgramPaths.h"
#include "desktop/PacerWallClock.h"
#include "desktop/console/ConsolePacer.h"
#include "desktop/console/HarmlessText.h"

int main(int argc, char** argv) {
  using namespace kv;
  const cli::ConsoleSetup setup;
  ConsolePacer pacer;
  const PacerWallClock clock;
  TerminalInput input;
  const bool errIsTerminal = cli::ErrorIsTerminal();
  HarmlessBuffer shownOut(std::cout, "\n\t");
  HarmlessBuffer shownErr(std::cerr, "\n\t\r");  // progress is written over and over in one line
  std::ostream terminalOut(&shownOut);
  std::ostream terminalErr(&shownErr);
  cli::DriverMaker drivers(pacer, clock, std::cerr);
  cli::Environment environment{
      .out = cli::OutputIsTerminal() ? terminalOut : std::cout,
      .err = errIsTerminal ? terminalErr : std::cerr,
      .errIsTerminal = errIsTerminal,
      .input = input,
      .pacer = pacer,
      .clock = clock,
      .home = ExecutableFolder(),
      .makeDriver = [&drivers](const cli::DriverOrder& order) { return drivers.Make(order); },
      .listSerialPorts = ListSerialPorts,
  };
  return static_cast<int>(cli::RunKvTele(cli::Utf8Arguments(argc, argv), environment));
}
