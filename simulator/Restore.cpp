#include "simulator/Restore.h"

#include <string>
#include <utility>

namespace sim {
namespace {

std::string InMemoryOrder(const Segment& segment, std::string_view bytes) {
  std::string ordered(bytes);
  if (segment.letter != 'F') return ordered;
  for (std::size_t i = 0; i + 1 < ordered.size(); i += 2) std::swap(ordered[i], ordered[i + 1]);
  return ordered;
}

}  // namespace

void Restore::Begin(const Memory& memory) {
  mTouched.assign(memory.Segments().size(), false);
}

Result<void> Restore::Check(const Memory& memory, char letter, std::uint32_t address, std::string_view bytes) {
  const auto segment = memory.Locate(address, bytes.size());
  if (!segment) return Refuse(segment.error());
  if (memory.Segments()[*segment].letter != letter) return Refuse(Refusal::WrongLetter);
  return {};
}

void Restore::Write(Memory& memory, std::uint32_t address, std::string_view bytes) {
  const std::size_t index = *memory.Locate(address, bytes.size());
  const Segment& segment = memory.Segments()[index];
  if (!mTouched[index]) memory.Erase(index);
  mTouched[index] = true;
  memory.Write(index, address - segment.start, InMemoryOrder(segment, bytes));
}

}  // namespace sim
