#include "simulator/OperandList.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "simulator/LittleEndian.h"
#include "simulator/ValueBytes.h"

namespace sim {
namespace {

constexpr std::size_t kMostRecords = 16;

// Lowest bit first, the last byte filled up with 0. Bits are 0 or 1.
void AppendBits(std::string& packed, std::span<const std::uint32_t> bits) {
  constexpr std::size_t kBits = 8;
  const auto byteOf = [](auto some) {
    unsigned byte = 0;
    for (std::size_t i = 0; i < some.size(); ++i) byte |= some[i] << i;
    return static_cast<char>(byte);
  };
  const std::size_t before = packed.size();
  packed.resize(before + (bits.size() + kBits - 1) / kBits);
  char* place = packed.data() + before;
  for (; bits.size() >= kBits; bits = bits.subspan(kBits)) *place++ = byteOf(bits.first<kBits>());  // all eight at once
  if (!bits.empty()) *place = byteOf(bits);
}

Result<void> AppendRecord(std::string& reply, const Operands& operands, std::string_view record) {
  if (LittleAt(record, 0) != 0 || LittleAt(record, 16) != 0) return Refuse(Refusal::Malformed);
  const std::uint32_t code = LittleAt(record, 4);
  const OperandTypeRow* type = code > kLastListedType ? nullptr : FindOperandType(code);
  if (type == nullptr) return Refuse(Refusal::UnknownOperandType);
  std::vector<std::uint32_t> gathered;
  const auto values = operands.Read(*type, LittleAt(record, 8), LittleAt(record, 12), gathered);
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
