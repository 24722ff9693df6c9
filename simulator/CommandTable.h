#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/Machine.h"
#include "simulator/TextCommands.h"

namespace sim {

// What the controller knows of each ASCII command before it reads its fields.
struct TextCommand {
  enum class Home : std::uint8_t { Everywhere, Compact, CompactButQ50, CompactWithDisplay };
  enum class Form : std::uint8_t {
    Whole,   // the name is the whole text
    Fields,  // fields follow
    Own,     // a tag of 4 digits, fields, and a check of 8 digits that the line has verified
  };

  std::string_view name;
  Form form;
  Home home;
  bool isRead;
  bool needsAccess;
  bool needsFlash;          // refused as busy while the flash is at work
  std::string_view states;  // the letters of those in which it is possible
  commands::Answer (*execute)(TextCall&);
  std::string_view reply;  // what a good reply begins with

  [[nodiscard]] bool IsAtHome(const Model& model) const;
  [[nodiscard]] bool IsPossibleIn(RunState state) const { return states.contains(static_cast<char>(state)); }
};

[[nodiscard]] std::span<const TextCommand> AllTextCommands();

// The command that the text is, or begins with; null when it is none.
[[nodiscard]] const TextCommand* FindTextCommand(std::string_view text);

}  // namespace sim
