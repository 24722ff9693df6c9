#include <iostream>
#include <string>

#include "KvCmDrv1/ports/PortList.h"
#include "apps/kvtele/DriverMaker.h"
#include "apps/kvtele/KvTele.h"
#include "base/ProgramFolders.h"
#include "desktop/PacerWallClock.h"
#include "desktop/console/ConsolePacer.h"
#include "desktop/console/ConsoleProgram.h"
#include "desktop/console/HarmlessText.h"
#include "secret/CoreFiles.h"

int main(int argc, char** argv) {
  using namespace kv;
  ForbidCoreFiles();
  const ConsoleSetup setup;
  ConsolePacer pacer;
  const PacerWallClock clock;
  TerminalInput input;
  const bool errIsTerminal = ErrorIsTerminal();
  HarmlessBuffer shownOut(std::cout, "\n\t");
  HarmlessBuffer shownErr(std::cerr, "\n\t\r");  // progress is written over and over in one line
  std::ostream terminalOut(&shownOut);
  std::ostream terminalErr(&shownErr);
  cli::DriverMaker drivers(pacer, clock, std::cerr);
  cli::Environment environment{
      .out = OutputIsTerminal() ? terminalOut : std::cout,
      .err = errIsTerminal ? terminalErr : std::cerr,
      .errIsTerminal = errIsTerminal,
      .input = input,
      .pacer = pacer,
      .clock = clock,
      .password = TakeVariable("KVTELE_PASSWORD"),
      .places = PlacesOfProgram(),
      .makeDriver = [&drivers](const cli::DriverOrder& order) { return drivers.Make(order); },
      .listSerialPorts = ListSerialPorts,
      .journalDisk = &SystemJournalDisk(),
      .stateFolder = UserStateFolder(),
  };
  return static_cast<int>(cli::RunKvTele(Utf8Arguments(argc, argv), environment));
}
