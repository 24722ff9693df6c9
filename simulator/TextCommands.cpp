#include "simulator/TextCommands.h"

#include "simulator/CommandTable.h"
#include "simulator/HexText.h"
#include "simulator/Seal.h"

namespace sim {
namespace {

constexpr std::size_t kNameSize = 2;
constexpr std::size_t kTagSize = 4;
constexpr std::size_t kCheckSize = 8;

// The fields of a command of our own; nothing when tag or check are not there.
Result<std::string_view> FieldsOf(const TextCommand& command, std::string_view text) {
  const std::string_view rest = text.substr(command.name.size());
  if (command.form != TextCommand::Form::Own) return rest;
  if (rest.size() < kTagSize + kCheckSize || !IsHexText(rest.substr(0, kTagSize))) return Refuse(Refusal::Malformed);
  return rest.substr(kTagSize, rest.size() - kTagSize - kCheckSize);
}

commands::Answer Execute(const TextCommand& command, Machine& machine, std::string_view text,
                         ConnectionAccess& connection, TextReply& reply) {
  if (!command.IsAtHome(machine.model)) return Refuse(Refusal::NotOnThisModel);
  if (command.needsAccess && !machine.MayAccess(connection)) return Refuse(Refusal::PasswordNeeded);
  if (!command.IsPossibleIn(machine.State())) return Refuse(Refusal::WrongState);
  if (command.needsFlash && machine.flash.IsBusy()) return Refuse(Refusal::Busy);
  const auto fields = FieldsOf(command, text);
  if (!fields) return Refuse(fields.error());
  TextCall call{machine, connection, HexReader(*fields), reply};
  return command.execute(call);
}

}  // namespace

TextReply ExecuteText(Machine& machine, std::string_view text, ConnectionAccess& connection) {
  TextReply reply;
  const TextCommand* command = FindTextCommand(text);
  reply.changesNothing = command != nullptr && command->isRead;
  const commands::Answer answer =
      command == nullptr ? Refuse(Refusal::UnknownCommand) : Execute(*command, machine, text, connection, reply);
  if (!answer) {
    reply.text = RefusalText(text, answer.error());
    return reply;
  }
  const auto tag = command->form == TextCommand::Form::Own ? text.substr(kNameSize, kTagSize) : std::string_view();
  reply.text.reserve(command->reply.size() + tag.size() + answer->size());
  reply.text.append(command->reply).append(tag).append(*answer);
  if (reply.resets) connection.hasAccess = false;
  return reply;
}

}  // namespace sim
