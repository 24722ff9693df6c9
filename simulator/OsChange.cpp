#include "simulator/OsChange.h"

#include <algorithm>

namespace sim {
namespace {

// Versions up to which a boot loader keeps the project in its old place.
constexpr int kBootLoaders[] = {110, 200, 250, 290};
// Versions from which on the operands have another form, and from which on the memory has.
constexpr int kOperandForms[] = {300, 374};
constexpr int kMemoryForm = 374;

}  // namespace

OsChange ChangeBetween(const OsVersion& before, const OsVersion& after) {
  const int old = VersionNumber(before);
  const int now = VersionNumber(after);
  const bool isNewForm = old < kMemoryForm && now >= kMemoryForm;
  const bool isOldForm = std::ranges::any_of(kOperandForms, [=](int from) { return now < from && old >= from; });
  return {.erasesProject = std::ranges::any_of(kBootLoaders, [=](int upTo) { return now > upTo && old <= upTo; }),
          .erasesMemory = isNewForm || isOldForm,
          .erasesOperands = isOldForm || (isNewForm && old < kOperandForms[0])};
}

}  // namespace sim
