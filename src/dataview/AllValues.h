#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "dataview/OperandStore.h"
#include "link/Channel.h"

namespace kv::mdlDataTypesView {

class GridEdits;
struct PassOutcome;
class RegionEngine;
class ViewContext;

// Reads and writes all operands, whatever regions the user has defined. The user's grids take no part in it; copies of
// them lie in the temporary files meanwhile, so that nothing is lost when the program is ended in the middle.
class AllValues {
 public:
  AllValues(ViewContext& context, RegionEngine& engine, GridEdits& edits)
      : mContext(context), mEngine(engine), mEdits(edits) {}

  // Reads every operand that the controller has and keeps the values aside. What was read before an error or a stop is
  // kept too.
  void Read();
  // Puts the values that were kept into the operand grid, but for operands that were read or written since.
  void Take();
  [[nodiscard]] bool HasRead() const { return mRead.has_value(); }
  void Forget() { mRead.reset(); }

  // Writes every operand of the grid that has a text, once all of them are found to be in range and the user agrees.
  void Write();

 private:
  [[nodiscard]] bool SaveTemporary();
  [[nodiscard]] std::optional<std::vector<Region>> ReadableRegions(Channel& channel);
  void ReadFrom(Channel& channel, const std::vector<Region>& regions);
  void SayRead(const PassOutcome& outcome, std::size_t total);
  [[nodiscard]] std::vector<Region> FilledRegions() const;
  [[nodiscard]] bool IsWanted(const std::vector<Region>& regions);

  ViewContext& mContext;
  RegionEngine& mEngine;
  GridEdits& mEdits;
  std::optional<OperandStore> mRead;
};

}  // namespace kv::mdlDataTypesView
