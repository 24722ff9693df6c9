#include "simulator/OperandList.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/LittleEndian.h"
#include "simulator/ValueBytes.h"

namespace sim {
namespace {

constexpr std::size_t kMostRecords = 16;

void AppendBits(std::string& packed, const std::vector<std::uint32_t>& bits) {
  for (std::size_t begin = 0; begin < bits.size(); begin += 8) {
    const std::size_t count = std::min<std::size_t>(bits.size() - begin, 8);
    unsigned byte = 0;
    for (std::size_t i = 0; i < count; ++i) byte |= (bits[begin + i] != 0 ? 1U : 0U) << i;
    packed += static_cast<char>(byte);
  }
}

Result<void> AppendRecord(std::string& reply, const Operands& operands, std::string_view record) {
  if (LittleAt(record, 0) != 0 || LittleAt(record, 16) != 0) return Refuse(Refusal::Malformed);
  const std::uint32_t code = LittleAt(record, 4);
  const OperandTypeRow* type = code > kLastListedType ? nullptr : FindOperandType(code);
  if (type == nullptr) return Refuse(Refusal::UnknownOperandType);
  const auto values = operands.Read(*type, LittleAt(record, 8), LittleAt(record, 12));
  if (!values) return Refuse(values.error());
  const bool isBit = type->fields == 1 && type->digits[0] == 2;
  if (isBit) {
    AppendBits(reply, *values);
  } else {
    AppendValues(reply, *type, *values, std::endian::little);
  }
  return {};
}

}  // namespace

Result<std::string> ReadOperandList(const Operands& operands, std::string_view records) {
  if (records.size() % kOperandRecordSize != 0) return Refuse(Refusal::Malformed);
  if (records.empty() || records.size() > kMostRecords * kOperandRecordSize) return Refuse(Refusal::PastTheEnd);
  std::string reply;
  for (; !records.empty(); records.remove_prefix(kOperandRecordSize)) {
    const auto appended = AppendRecord(reply, operands, records.substr(0, kOperandRecordSize));
    if (!appended) return Refuse(appended.error());
  }
  return reply;
}

}  // namespace sim
