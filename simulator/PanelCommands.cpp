// The panel: PD, PC and PE in ASCII frames, operations 270 to 272 in block messages. The same data in both.
#include "simulator/PanelCommands.h"

#include <string>
#include <utility>

#include "simulator/HexText.h"
#include "simulator/MachineOperands.h"
#include "simulator/TextCommands.h"

namespace sim {
namespace {

constexpr std::size_t kMostInFrame = 512;  // bytes of a reply's data
constexpr std::size_t kMostInBlock = 8192;
constexpr int kDone = 10;

using Handler = Result<std::string> (Panel::*)(std::string_view, std::size_t, const Panel::Around&);

std::string Description(const Machine& machine) {
  if (!machine.model.HasColour()) return machine.panel.Describe(0, 0);
  return machine.panel.Describe(machine.resources.DirectoryCrc(ResourceKind::Fonts),
                                machine.resources.DirectoryCrc(ResourceKind::Images));
}

Result<std::string> Handle(Machine& machine, Handler handler, std::string_view data, std::size_t limit) {
  MachineOperands operands(machine.operands);
  const Panel::Around around{.operands = operands,
                             .programRuns = machine.State() == RunState::Running,
                             .inSystemMode = machine.displayInSystemMode,
                             .facts = {.model = std::string(machine.model.reported),
                                       .os = machine.identity.os.number,
                                       .serial = machine.identity.serial,
                                       .project = machine.identity.projectName}};
  return (machine.panel.*handler)(data, limit, around);
}

BlockAnswer BlockOf(Result<std::string> data) {
  if (!data) return Refuse(data.error());
  return BlockReply{kDone, std::move(*data)};
}

commands::Answer TextOf(TextCall& call, Handler handler) {
  const std::string data = call.fields.RestAsBytes();
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  const auto reply = Handle(call.machine, handler, data, kMostInFrame);
  if (!reply) return Refuse(reply.error());
  return HexOfBytes(*reply);
}

}  // namespace

BlockAnswer DescribePanel(Machine& machine, const BlockRequest&) {
  return BlockReply{kDone, Description(machine)};
}

BlockAnswer TellPanelChanges(Machine& machine, const BlockRequest& request) {
  return BlockOf(Handle(machine, &Panel::TellChanges, request.payload, kMostInBlock));
}

BlockAnswer TakePanelEvent(Machine& machine, const BlockRequest& request) {
  return BlockOf(Handle(machine, &Panel::TakeEvent, request.payload, kMostInBlock));
}

namespace commands {

Answer DescribePanel(TextCall& call) {
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  return HexOfBytes(Description(call.machine));
}

Answer TellPanelChanges(TextCall& call) {
  return TextOf(call, &Panel::TellChanges);
}

Answer TakePanelEvent(TextCall& call) {
  return TextOf(call, &Panel::TakeEvent);
}

}  // namespace commands

}  // namespace sim
