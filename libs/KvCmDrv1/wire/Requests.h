#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "KvCmDrv1/wire/OperandTypes.h"

namespace kv {

inline constexpr std::size_t kTagDigits = 4;

// Builds the texts of the commands with a tag: two letters, tag, fields, and the check over unit id and all of these.
// One writer is used again and again, so that a request costs no allocation. Each text is good until the next one is
// built.
class RequestWriter {
 public:
  [[nodiscard]] std::string_view ReadOperands(std::uint8_t unit, std::uint16_t tag, const OperandRange& range);
  // `values` holds one number for each operand of the range.
  [[nodiscard]] std::string_view WriteOperands(std::uint8_t unit, std::uint16_t tag, const OperandRange& range,
                                               std::span<const std::uint32_t> values);
  [[nodiscard]] std::string_view ReadMemory(std::uint8_t unit, std::uint16_t tag, std::uint32_t address,
                                            std::uint32_t length);
  [[nodiscard]] std::string_view Information(std::uint8_t unit, std::uint16_t tag);
  // At most 8 bytes of password.
  [[nodiscard]] std::string_view GiveAccess(std::uint8_t unit, std::uint16_t tag, std::string_view password);
  // A panel's command, whose data travel as digits: PD, PC or PE.
  [[nodiscard]] std::string_view Panel(std::string_view letters, std::uint8_t unit, std::uint16_t tag,
                                       std::string_view data);
  // Asks which request other than a read was executed last.
  [[nodiscard]] std::string_view Synchronise(std::uint8_t unit, std::uint16_t tag);
  // Overwrites the text that was built last: it holds a password.
  void WipeText();

 private:
  void Begin(std::string_view letters, std::uint16_t tag);
  void AddRange(const OperandRange& range);
  [[nodiscard]] std::string_view Finish(std::uint8_t unit);

  std::string mText;
};

}  // namespace kv
