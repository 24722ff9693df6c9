#include "simulator/CommandTable.h"

#include <algorithm>

namespace sim {
namespace {

using Form = TextCommand::Form;
using Home = TextCommand::Home;

constexpr std::string_view kAll = "RSLB";
constexpr std::string_view kUnderOs = "RSL";
constexpr std::string_view kAtRest = "SLB";

// A longer name stands before its own beginning.
// clang-format off
constexpr TextCommand kCommands[] = {
    // text      form          models               read   access flash  states    does                           reply
    {"ID",       Form::Whole,  Home::Everywhere,    true,  false, false, kAll,     commands::Identify,            "ID"},
    {"DRS",      Form::Fields, Home::Everywhere,    true,  false, false, kAll,     commands::ReadSystemBytes,     "DR"},
    {"IN",       Form::Own,    Home::Everywhere,    true,  false, false, kAll,     commands::Inform,              "IN"},
    {"AC",       Form::Own,    Home::Everywhere,    true,  false, false, kAll,     commands::OpenAccess,          "AC"},
    {"CCS",      Form::Whole,  Home::Everywhere,    false, true,  false, kUnderOs, commands::Stop,                "CCOK"},
    {"CCR",      Form::Whole,  Home::Everywhere,    false, true,  true,  kUnderOs, commands::Run,                 "CCOK"},
    {"CCE",      Form::Whole,  Home::Everywhere,    false, true,  true,  kAll,     commands::Reset,               "CCOK"},
    {"CCB",      Form::Whole,  Home::Everywhere,    false, true,  true,  kAll,     commands::EnterBootLoader,     "CCOK"},
    {"CCM",      Form::Whole,  Home::Everywhere,    false, true,  true,  kUnderOs, commands::BeginRestore,        "CCOK"},
    {"PV000A",   Form::Whole,  Home::Everywhere,    false, true,  false, kUnderOs, commands::PrepareDownload,     "PVOK"},
    {"CPSR010A", Form::Whole,  Home::Everywhere,    false, false, false, kAll,     commands::SpeedUp,             "CPOK"},
    {"CPSR0007", Form::Whole,  Home::Everywhere,    false, false, false, kAll,     commands::SlowDown,            "CPOK"},
    {"CB0A",     Form::Whole,  Home::Everywhere,    false, false, false, kAll,     commands::SpeedUp,             "CBOK"},
    {"RO",       Form::Own,    Home::Everywhere,    true,  false, false, kUnderOs, commands::ReadOperands,        "RO"},
    {"WO",       Form::Own,    Home::Everywhere,    false, true,  false, kUnderOs, commands::WriteOperands,       "WO"},
    {"GI",       Form::Fields, Home::Everywhere,    true,  false, false, kUnderOs, commands::ListSegments,        "GI"},
    {"RM",       Form::Own,    Home::Everywhere,    true,  false, false, kUnderOs, commands::ReadMemory,          "RM"},
    {"WD",       Form::Fields, Home::Everywhere,    false, true,  true,  kUnderOs, commands::WriteMemory,         "WDOK"},
    {"ED",       Form::Whole,  Home::Everywhere,    false, true,  true,  "L",      commands::EndRestore,          "EDOK"},
    {"RX",       Form::Fields, Home::Everywhere,    true,  false, false, kAll,     commands::ReadApplication,     "RX"},
    {"FW",       Form::Fields, Home::Everywhere,    false, true,  true,  kAtRest,  commands::WriteFlash,          "FWOK"},
    {"DE",       Form::Whole,  Home::Compact,       false, true,  true,  kUnderOs, commands::EraseProject,        "DEOK"},
    {"DI",       Form::Whole,  Home::Compact,       false, false, false, kUnderOs, commands::TellProjectMemory,   "DI"},
    {"LN",       Form::Fields, Home::Compact,       false, true,  true,  "L",      commands::NameProject,         "LNOK"},
    {"LD",       Form::Fields, Home::Compact,       false, true,  true,  "L",      commands::WriteProject,        "LDOK"},
    {"FS05",     Form::Whole,  Home::Compact,       false, false, true,  "B",      commands::TestFlash,           "FSOK"},
    {"FI",       Form::Whole,  Home::Everywhere,    true,  false, false, kAll,     commands::TellFlash,           "FI"},
    {"OSE0",     Form::Whole,  Home::Compact,       false, false, true,  "B",      commands::EraseOs,             "OSOK"},
    {"OSC7F",    Form::Whole,  Home::Compact,       false, false, true,  "B",      commands::EraseOs,             "OSOK"},
    {"OSS",      Form::Whole,  Home::Compact,       true,  false, false, "B",      commands::TellOsErase,         "OS"},
    {"PD",       Form::Own,    Home::CompactWithDisplay, true,  false, false, kUnderOs, commands::DescribePanel,    "PD"},
    {"PC",       Form::Own,    Home::CompactWithDisplay, true,  false, false, kUnderOs, commands::TellPanelChanges, "PC"},
    {"PE",       Form::Own,    Home::CompactWithDisplay, false, true,  false, kUnderOs, commands::TakePanelEvent,   "PE"},
    {"OSP0",     Form::Fields, Home::CompactButQ50, false, false, true,  "B",      commands::WriteOsBlock,        "OSOK"},
};
// clang-format on

}  // namespace

bool TextCommand::IsAtHome(const Model& model) const {
  if (home == Home::Everywhere) return true;
  if (model.family != Family::Compact) return false;
  if (home == Home::CompactWithDisplay) return model.display.kind != Display::Kind::None;
  return home == Home::Compact || model.osModel != "Q50";
}

std::span<const TextCommand> AllTextCommands() {
  return kCommands;
}

const TextCommand* FindTextCommand(std::string_view text) {
  const auto fits = [text](const TextCommand& command) {
    return command.form == Form::Whole ? text == command.name : text.starts_with(command.name);
  };
  const auto command = std::ranges::find_if(kCommands, fits);
  return command == std::end(kCommands) ? nullptr : &*command;
}

}  // namespace sim
