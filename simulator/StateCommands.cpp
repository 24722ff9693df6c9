// What the controller does: run, stop, reset, boot loader, access, line speed.
#include "simulator/TextCommands.h"

namespace sim::commands {
namespace {

constexpr int kFastBaud = 57600;
constexpr int kSlowBaud = 9600;
constexpr std::size_t kPasswordSize = 8;

Answer AnswerOf(const Result<void>& done) {
  if (!done) return Refuse(done.error());
  return std::string();
}

}  // namespace

Answer Stop(TextCall& call) {
  return AnswerOf(call.machine.Stop());
}

Answer Run(TextCall& call) {
  return AnswerOf(call.machine.Run());
}

Answer Reset(TextCall& call) {
  const auto done = call.machine.Reset();
  call.reply.resets = done.has_value();
  return AnswerOf(done);
}

Answer EnterBootLoader(TextCall& call) {
  return AnswerOf(call.machine.EnterBootLoader());
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
