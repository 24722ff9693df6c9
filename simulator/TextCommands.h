#pragma once

#include <string>
#include <string_view>

#include "simulator/Controller.h"
#include "simulator/HexText.h"
#include "simulator/Machine.h"
#include "simulator/Refusal.h"

namespace sim {

// One ASCII request on its way through its command.
struct TextCall {
  Machine& machine;
  ConnectionAccess& connection;
  HexReader fields;  // behind the command's name; for our own commands what is between tag and check
  TextReply& reply;  // for what the line has to do afterwards
};

// Finds the command, checks what the command table says of it, and executes it. Refusals come in the order: not known,
// not on this model, no access, wrong state, busy, malformed, then what the command itself finds.
[[nodiscard]] TextReply ExecuteText(Machine& machine, std::string_view text, ConnectionAccess& connection);

// The commands, by file. Each gives the reply behind the name (and tag), or why it is refused.
namespace commands {

using Answer = Result<std::string>;

// SystemInfo.cpp
Answer Identify(TextCall& call);
Answer ReadSystemBytes(TextCall& call);
Answer Inform(TextCall& call);

// StateCommands.cpp
Answer Stop(TextCall& call);
Answer Run(TextCall& call);
Answer Reset(TextCall& call);
Answer EnterBootLoader(TextCall& call);
Answer PrepareDownload(TextCall& call);
Answer OpenAccess(TextCall& call);
Answer SpeedUp(TextCall& call);
Answer SlowDown(TextCall& call);

// OperandCommands.cpp
Answer ReadOperands(TextCall& call);
Answer WriteOperands(TextCall& call);

// MemoryCommands.cpp
Answer ListSegments(TextCall& call);
Answer ReadMemory(TextCall& call);
Answer BeginRestore(TextCall& call);
Answer WriteMemory(TextCall& call);
Answer EndRestore(TextCall& call);
Answer ReadApplication(TextCall& call);
Answer WriteFlash(TextCall& call);

// PanelCommands.cpp
Answer DescribePanel(TextCall& call);
Answer TellPanelChanges(TextCall& call);
Answer TakePanelEvent(TextCall& call);

// DownloadCommands.cpp
Answer EraseProject(TextCall& call);
Answer TellProjectMemory(TextCall& call);
Answer NameProject(TextCall& call);
Answer WriteProject(TextCall& call);
Answer TestFlash(TextCall& call);
Answer TellFlash(TextCall& call);
Answer EraseOs(TextCall& call);
Answer TellOsErase(TextCall& call);
Answer WriteOsBlock(TextCall& call);

}  // namespace commands

}  // namespace sim
