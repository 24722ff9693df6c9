#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "base/Bytes.h"
#include "simulator/ModelTable.h"
#include "simulator/OsVersion.h"
#include "simulator/Refusal.h"

namespace sim {

// The O/S flash of a compact controller while its boot loader replaces the O/S. A place can be programmed once after an
// erase; the same bytes again are a repeat and change nothing.
class CompactOs {
 public:
  explicit CompactOs(const Model& model) : mModel(model) {}

  void Erase();
  void Drop() { mFlash.clear(); }
  [[nodiscard]] bool IsErased() const { return !mFlash.empty(); }  // since the boot loader was entered

  // Refused: 0B past the end of the flash, 0D a place that is not erased, 0F a first block that is not of an image for
  // this model.
  [[nodiscard]] Result<void> Write(std::uint32_t address, std::string_view block);

  // The version in the head of the image, once all of the image is there: its length and its CRC-32 hold.
  [[nodiscard]] std::optional<OsVersion> NewVersion() const;

 private:
  const Model& mModel;
  kv::Bytes mFlash;  // empty until it is erased
};

}  // namespace sim
