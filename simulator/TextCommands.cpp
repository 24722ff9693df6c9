#include "simulator/TextCommands.h"

#include <algorithm>
#include <cstdint>

#include "simulator/HexText.h"
#include "simulator/Seal.h"

namespace sim {
namespace {

enum class Home : std::uint8_t { Everywhere, Compact, CompactButQ50 };
enum class Form : std::uint8_t {
  Whole,   // the name is the whole text
  Fields,  // fields follow
  Own,     // a tag of 4 digits, fields, and a check of 8 digits that the line has verified
};

constexpr unsigned kRunning = 1;
constexpr unsigned kStopped = 2;
constexpr unsigned kLoading = 4;
constexpr unsigned kBoot = 8;
constexpr unsigned kAll = kRunning | kStopped | kLoading | kBoot;
constexpr unsigned kUnderOs = kRunning | kStopped | kLoading;
constexpr unsigned kAtRest = kStopped | kLoading | kBoot;

constexpr std::size_t kNameSize = 2;
constexpr std::size_t kTagSize = 4;
constexpr std::size_t kCheckSize = 8;

struct Command {
  std::string_view name;
  Form form;
  Home home;
  bool isRead;
  bool needsAccess;
  unsigned states;
  commands::Answer (*execute)(TextCall&);
  std::string_view reply;  // what a good reply begins with
};

// A longer name stands before its own beginning.
// clang-format off
constexpr Command kCommands[] = {
    // text       form          models               read   access states    does                          reply
    {"ID",       Form::Whole,  Home::Everywhere,    true,  false, kAll,     commands::Identify,           "ID"},
    {"DRS",      Form::Fields, Home::Everywhere,    true,  false, kAll,     commands::ReadSystemBytes,    "DR"},
    {"IN",       Form::Own,    Home::Everywhere,    true,  false, kAll,     commands::Inform,             "IN"},
    {"AC",       Form::Own,    Home::Everywhere,    true,  false, kAll,     commands::OpenAccess,         "AC"},
    {"CCS",      Form::Whole,  Home::Everywhere,    false, true,  kUnderOs, commands::Stop,               "CCOK"},
    {"CCR",      Form::Whole,  Home::Everywhere,    false, true,  kUnderOs, commands::Run,                "CCOK"},
    {"CCE",      Form::Whole,  Home::Everywhere,    false, true,  kAll,     commands::Reset,              "CCOK"},
    {"CCB",      Form::Whole,  Home::Everywhere,    false, true,  kAll,     commands::EnterBootLoader,    "CCOK"},
    {"CCM",      Form::Whole,  Home::Everywhere,    false, true,  kUnderOs, commands::BeginRestore,       "CCOK"},
    {"PV000A",   Form::Whole,  Home::Everywhere,    false, true,  kUnderOs, commands::PrepareDownload,    "PVOK"},
    {"CPSR010A", Form::Whole,  Home::Everywhere,    false, false, kAll,     commands::SpeedUp,            "CPOK"},
    {"CPSR0007", Form::Whole,  Home::Everywhere,    false, false, kAll,     commands::SlowDown,           "CPOK"},
    {"CB0A",     Form::Whole,  Home::Everywhere,    false, false, kAll,     commands::SpeedUp,            "CBOK"},
    {"RO",       Form::Own,    Home::Everywhere,    true,  false, kUnderOs, commands::ReadOperands,       "RO"},
    {"WO",       Form::Own,    Home::Everywhere,    false, true,  kUnderOs, commands::WriteOperands,      "WO"},
    {"GI",       Form::Fields, Home::Everywhere,    true,  false, kUnderOs, commands::ListSegments,       "GI"},
    {"RM",       Form::Own,    Home::Everywhere,    true,  false, kUnderOs, commands::ReadMemory,         "RM"},
    {"WD",       Form::Fields, Home::Everywhere,    false, true,  kUnderOs, commands::WriteMemory,        "WDOK"},
    {"ED",       Form::Whole,  Home::Everywhere,    false, true,  kUnderOs, commands::EndRestore,         "EDOK"},
    {"RX",       Form::Fields, Home::Everywhere,    true,  false, kAll,     commands::ReadApplication,    "RX"},
    {"FW",       Form::Fields, Home::Everywhere,    false, false, kAtRest,  commands::WriteFlash,         "FWOK"},
    {"DE",       Form::Whole,  Home::Compact,       false, true,  kUnderOs, commands::EraseProject,       "DEOK"},
    {"DI",       Form::Whole,  Home::Compact,       false, false, kUnderOs, commands::TellProjectMemory,  "DI"},
    {"LN",       Form::Fields, Home::Compact,       false, true,  kLoading, commands::NameProject,        "LNOK"},
    {"LD",       Form::Fields, Home::Compact,       false, true,  kLoading, commands::WriteProject,       "LDOK"},
    {"FS05",     Form::Whole,  Home::Compact,       false, false, kBoot,    commands::TestFlash,          "FSOK"},
    {"FI",       Form::Whole,  Home::Everywhere,    true,  false, kAll,     commands::TellFlash,          "FI"},
    {"OSE0",     Form::Whole,  Home::Compact,       false, false, kBoot,    commands::EraseOs,            "OSOK"},
    {"OSC7F",    Form::Whole,  Home::Compact,       false, false, kBoot,    commands::EraseOs,            "OSOK"},
    {"OSS",      Form::Whole,  Home::Compact,       true,  false, kBoot,    commands::TellOsErase,        "OS"},
    {"OSP0",     Form::Fields, Home::CompactButQ50, false, false, kBoot,    commands::WriteOsBlock,       "OSOK"},
};
// clang-format on

const Command* FindCommand(std::string_view text) {
  const auto fits = [text](const Command& command) {
    return command.form == Form::Whole ? text == command.name : text.starts_with(command.name);
  };
  const auto command = std::ranges::find_if(kCommands, fits);
  return command == std::end(kCommands) ? nullptr : &*command;
}

bool IsAtHome(const Command& command, const Model& model) {
  if (command.home == Home::Everywhere) return true;
  if (model.family != Family::Compact) return false;
  return command.home == Home::Compact || model.osModel != "Q50";
}

unsigned MaskOf(RunState state) {
  switch (state) {
    case RunState::Running:
      return kRunning;
    case RunState::Stopped:
      return kStopped;
    case RunState::Loading:
      return kLoading;
    case RunState::Boot:
      return kBoot;
  }
  return 0;
}

// The fields of a command of our own; nothing when tag or check are not there.
Result<std::string_view> FieldsOf(const Command& command, std::string_view text) {
  const std::string_view rest = text.substr(command.name.size());
  if (command.form != Form::Own) return rest;
  if (rest.size() < kTagSize + kCheckSize) return Refuse(Refusal::Malformed);
  const bool hasTagAndCheck = IsHexText(rest.substr(0, kTagSize)) && IsHexText(rest.substr(rest.size() - kCheckSize));
  if (!hasTagAndCheck) return Refuse(Refusal::Malformed);
  return rest.substr(kTagSize, rest.size() - kTagSize - kCheckSize);
}

commands::Answer Execute(const Command& command, Machine& machine, std::string_view text, Connection& connection,
                         TextReply& reply) {
  if (!IsAtHome(command, machine.model)) return Refuse(Refusal::NotOnThisModel);
  const auto fields = FieldsOf(command, text);
  if (!fields) return Refuse(fields.error());
  if (command.needsAccess && !machine.MayAccess(connection)) return Refuse(Refusal::PasswordNeeded);
  if ((command.states & MaskOf(machine.State())) == 0) return Refuse(Refusal::WrongState);
  TextCall call{machine, connection, HexReader(*fields), reply};
  return command.execute(call);
}

}  // namespace

TextReply ExecuteText(Machine& machine, std::string_view text, Connection& connection) {
  TextReply reply;
  const Command* command = FindCommand(text);
  reply.changesNothing = command != nullptr && command->isRead;
  const commands::Answer answer =
      command == nullptr ? Refuse(Refusal::UnknownCommand) : Execute(*command, machine, text, connection, reply);
  if (!answer) {
    reply.text = RefusalText(text, answer.error());
    return reply;
  }
  const auto tag = command->form == Form::Own ? text.substr(kNameSize, kTagSize) : std::string_view();
  reply.text = std::string(command->reply) + std::string(tag) + *answer;
  if (reply.resets) connection.hasAccess = false;
  return reply;
}

}  // namespace sim
