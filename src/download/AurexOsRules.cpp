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

// What the operating system's change does: docs/controller-protocol.md.
std::vector<std::string> AurexOsChange::Losses() const {
  const std::string stops = "The program stops, and the controller restarts at the end";
  if (isInBoot) {
    return {
        "The controller restarts at the end.",
        "Nothing is known of what ran in it before: project, memory and the values of the operands may be lost, and "
        "cannot be saved before."};
  }
  if (NeedsMemorySaved()) {
    std::vector<std::string> losses = {
        stops + ".",
        "The new O/S lays the memory out anew. So project and memory are saved in a file before, and written back at "
        "the end: what the next questions warn of is lost only when that fails."};
    if (installed < kNewOperands) {
      losses.emplace_back("The values of the operands are lost all the same: the new O/S keeps them in another form.");
    }
    return losses;
  }
  if (!ChangesBootLoader() && !LosesDataTypes()) return {stops + "; project and memory stay as they are."};
  std::vector<std::string> losses = {stops + "."};
  if (ChangesBootLoader()) losses.emplace_back("The project may be erased. The download does not save it.");
  if (LosesDataTypes()) {
    losses.emplace_back("Memory and values of the operands are lost. The download does not save them.");
  }
  return losses;
}

}  // namespace kv
