// What the controller does: run, stop, reset, boot loader, access, line speed.
#include "simulator/TextCommands.h"

namespace sim::commands {
namespace {

constexpr int kFastBaud = 57600;
constexpr int kSlowBaud = 9600;
constexpr std::size_t kPasswordSize = 8;

}  // namespace

Answer Stop(TextCall& call) {
  call.machine.Stop();
  return std::string();
}

Answer Run(TextCall& call) {
  call.machine.Run();
  return std::string();
}

Answer Reset(TextCall& call) {
  call.machine.Reset();
  call.reply.resets = true;
  return std::string();
}

Answer EnterBootLoader(TextCall& call) {
  call.machine.EnterBootLoader();
  return std::string();
}

// Nothing has to be made ready in here.
Answer PrepareDownload(TextCall&) {
  return std::string();
}

Answer OpenAccess(TextCall& call) {
  const std::string password = call.fields.Bytes(kPasswordSize);
  if (!call.fields.IsGoodAndDone()) return Refuse(Refusal::Malformed);
  if (!call.machine.TakePassword(password, call.connection)) return Refuse(Refusal::WrongPassword);
  return "OK";
}

Answer SpeedUp(TextCall& call) {
  call.reply.newBaud = kFastBaud;
  return std::string();
}

Answer SlowDown(TextCall& call) {
  call.reply.newBaud = kSlowBaud;
  return std::string();
}

}  // namespace sim::commands
