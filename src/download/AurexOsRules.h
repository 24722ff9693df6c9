#pragma once

#include <string>
#include <vector>

namespace kv {

// What the change from the installed O/S of an Aurex controller to a new one means for what the controller holds.
// Versions are read without their points: 4.60 is 460.
struct AurexOsChange {
  int installed = 0;      // 0 when it is not known
  int next = 0;           // that is to be installed
  bool isInBoot = false;  // its boot loader answers, so nothing is known of what ran before

  // The new O/S wants another boot loader than the installed one, which may lay out the flash anew: the project may be
  // lost.
  [[nodiscard]] bool ChangesBootLoader() const;
  // The two keep their operands in different forms: their values are lost, or hang on the memory that is saved.
  [[nodiscard]] bool LosesDataTypes() const;
  // The memory is laid out anew, and is saved before and restored afterwards.
  [[nodiscard]] bool NeedsMemorySaved() const;
  // The same for people, a sentence each: what is lost, and what is saved and written back.
  [[nodiscard]] std::vector<std::string> Losses() const;
  // Whether system fonts of this version are too old for the new O/S.
  [[nodiscard]] bool RefusesFonts(int fonts) const;
};

}  // namespace kv
