#include "download/AurexOsRules.h"

#include <algorithm>

namespace kv {
namespace {

// The last versions before each new boot loader.
constexpr int kBootLoaders[] = {110, 200, 250, 290, 373};
// The first versions with each form of the operands; the last of them lays out the memory anew and has new fonts.
constexpr int kNewOperands = 300;
constexpr int kNewMemory = 374;
constexpr int kFirstFontsOfNewMemory = 130;

}  // namespace

bool AurexOsChange::ChangesBootLoader() const {
  return isInBoot || std::ranges::any_of(kBootLoaders, [this](int last) { return next > last && installed <= last; });
}

bool AurexOsChange::LosesDataTypes() const {
  const auto isBehind = [this](int first) { return next < first && installed >= first; };
  // Towards a new memory they are saved and written back; but whether that succeeds is not known yet.
  return isInBoot || isBehind(kNewOperands) || isBehind(kNewMemory) || NeedsMemorySaved();
}

bool AurexOsChange::NeedsMemorySaved() const {
  return !isInBoot && installed < kNewMemory && next >= kNewMemory;
}

bool AurexOsChange::RefusesFonts(int fonts) const {
  return next >= kNewMemory && fonts < kFirstFontsOfNewMemory;
}

}  // namespace kv
