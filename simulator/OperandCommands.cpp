// RO and WO: typed operands in ASCII frames.
#include <cstdint>
#include <vector>

#include "base/Hex.h"
#include "simulator/HexText.h"
#include "simulator/TextCommands.h"
#include "simulator/ValueBytes.h"

namespace sim::commands {
namespace {

struct OperandSpan {
  const OperandTypeRow* type;
  std::uint32_t start;
  std::uint32_t count;

  [[nodiscard]] std::string Echo() const {
    return kv::ToHex(type->code, 2) + kv::ToHex(start, 4) + kv::ToHex(count, 4);
  }
};

// Type, start, count, and digits to the end: `hasValues` tells whether so many values follow or nothing. How many
// digits a value has is not known for a type that nobody knows, so that is told last.
Result<OperandSpan> TakeSpan(HexReader& fields, bool hasValues) {
  const std::uint32_t code = fields.Number(2);
  const std::uint32_t start = fields.Number(4);
  const std::uint32_t count = fields.Number(4);
  if (!fields.IsGood() || !IsHexText(fields.Rest())) return Refuse(Refusal::Malformed);
  const OperandTypeRow* type = FindOperandType(code);
  const bool isKnownLength = type != nullptr || !hasValues;
  const std::size_t digits = hasValues && type != nullptr ? count * type->Digits() : 0;
  if (isKnownLength && fields.Rest().size() != digits) return Refuse(Refusal::Malformed);
  if (type == nullptr) return Refuse(Refusal::UnknownOperandType);
  return OperandSpan{type, start, count};
}

}  // namespace

Answer ReadOperands(TextCall& call) {
  const auto span = TakeSpan(call.fields, false);
  if (!span) return Refuse(span.error());
  std::vector<std::uint32_t> gathered;
  const auto values = call.machine.operands.Read(*span->type, span->start, span->count, gathered);
  if (!values) return Refuse(values.error());
  std::string bytes;
  AppendValues(bytes, *span->type, *values, std::endian::big);
  std::string answer = span->Echo();
  AppendHexOfBytes(answer, bytes);
  return answer;
}

Answer WriteOperands(TextCall& call) {
  const auto span = TakeSpan(call.fields, true);
  if (!span) return Refuse(span.error());
  if (const auto allowed = call.machine.operands.CheckWrite(*span->type, span->start, span->count); !allowed) {
    return Refuse(allowed.error());
  }
  std::vector<std::uint32_t> values(span->count);
  for (std::uint32_t& value : values) value = call.fields.Number(span->type->Digits());
  const auto written = call.machine.operands.Write(*span->type, span->start, values);
  if (!written) return Refuse(written.error());
  return span->Echo() + "OK";
}

}  // namespace sim::commands
