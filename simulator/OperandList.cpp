#include "simulator/OperandList.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/LittleEndian.h"

namespace sim {
namespace {

constexpr std::size_t kMostRecords = 16;

std::string PackBits(const std::vector<std::uint32_t>& bits) {
  std::string packed((bits.size() + 7) / 8, '\0');
  for (std::size_t i = 0; i < bits.size(); ++i) {
    if (bits[i] != 0) packed[i / 8] = static_cast<char>(packed[i / 8] | 1 << i % 8);
  }
  return packed;
}

std::string PackValues(const OperandTypeRow& type, const std::vector<std::uint32_t>& values) {
  const bool isBit = type.fields == 1 && type.digits[0] == 2;
  if (isBit) return PackBits(values);
  const std::size_t operands = values.size() / type.fields;
  std::string packed(operands * type.Digits() / 2, '\0');
  char* place = packed.data();
  for (auto value = values.begin(); value != values.end();) {
    for (std::size_t field = 0; field < type.fields; ++field, ++value) {
      place = PutLittle(place, *value, type.digits[field] / 2U);
    }
  }
  return packed;
}

Result<std::string> ReadRecord(const Operands& operands, std::string_view record) {
  if (LittleAt(record, 0) != 0 || LittleAt(record, 16) != 0) return Refuse(Refusal::Malformed);
  const std::uint32_t code = LittleAt(record, 4);
  const OperandTypeRow* type = code > kLastListedType ? nullptr : FindOperandType(code);
  if (type == nullptr) return Refuse(Refusal::UnknownOperandType);
  const auto values = operands.Read(*type, LittleAt(record, 8), LittleAt(record, 12));
  if (!values) return Refuse(values.error());
  return PackValues(*type, *values);
}

}  // namespace

Result<std::string> ReadOperandList(const Operands& operands, std::string_view records) {
  if (records.size() % kOperandRecordSize != 0) return Refuse(Refusal::Malformed);
  if (records.empty() || records.size() > kMostRecords * kOperandRecordSize) return Refuse(Refusal::PastTheEnd);
  std::string reply;
  for (; !records.empty(); records.remove_prefix(kOperandRecordSize)) {
    const auto values = ReadRecord(operands, records.substr(0, kOperandRecordSize));
    if (!values) return values;
    reply += *values;
  }
  return reply;
}

}  // namespace sim
