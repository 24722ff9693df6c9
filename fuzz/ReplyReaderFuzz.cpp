#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "KvCmDrv1/wire/Replies.h"
#include "KvCmDrv1/wire/Seal.h"

// Every reader on every text: what is given must be as long as what was asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 4, size - 4);
  const auto tag = static_cast<std::uint16_t>(data[0] << 8 | data[1]);
  const kv::OperandType* type = kv::FindOperandType(data[2]);
  if (type == nullptr) type = kv::FindOperandType(1);
  const kv::OperandRange range{type, 0, static_cast<std::uint16_t>(data[3] % type->maxPerRequest + 1)};
  const std::size_t numbers = range.count * kv::NumbersOf(type->shape);

  if (const auto values = kv::ReadOperandValues(text, tag, range); values && values->size() != numbers) std::abort();
  const std::vector<kv::OperandRange> ranges = {range, range};
  if (const auto lists = kv::ReadListPayload(text, ranges)) {
    if (lists->size() != 2 || lists->at(1).size() != numbers) std::abort();
  }
  kv::Bytes memory(data[3]);
  (void)kv::ReadMemoryBytes(text, tag, 0, memory);
  (void)kv::ReadIdentification(text);
  if (const auto info = kv::ReadInformation(text, tag); info && info->projectName.size() > 20) std::abort();
  if (const auto step = kv::ReadSynchronisation(text, tag); step && step->reply.size() > 40) std::abort();
  (void)kv::ReadsWriteDone(text, tag, range);
  (void)kv::ReadsAccessGiven(text, tag);
  (void)kv::ReadRefusal(text, "RO");
  (void)kv::Seal("ID").Open({.unit = data[3], .text = text});
  return 0;
}
