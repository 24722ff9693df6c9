#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "apps/kvtele/Failure.h"
#include "dataview/operands/Region.h"

// What the command line knows of operands beyond the catalogue: how they are named there, and which of them there is a
// reason to ask a controller for.
namespace kv::cli {

using mdlDataTypesView::FormatCode;
using mdlDataTypesView::OperandTypeCode;
using mdlDataTypesView::Region;
using mdlDataTypesView::RegionText;
using mdlDataTypesView::SizeCode;

// How operands are shown as one text: a size with a format, as --size and --format name them.
struct DisplayForm {
  SizeCode size = SizeCode::Bit8;
  FormatCode format = FormatCode::Hex;
};

// The type with this name, in either case; a minus may stand for the blank.
[[nodiscard]] OrFailure<OperandTypeCode> ParseType(const std::string& name);

// The operands `from` to `to` as typed. Refused: what is no number, `to` before `from`, and what no model at all has.
[[nodiscard]] OrFailure<Region> ParseRegion(OperandTypeCode type, const std::string& from, const std::string& to);

// What the two options ask for; nothing when both are empty. Refused when the catalogue does not offer the
// pair for the type.
[[nodiscard]] OrFailure<std::optional<DisplayForm>> ParseDisplayForm(OperandTypeCode type, const std::string& size,
                                                                     const std::string& format);

// Whether the model has all operands of the region, so that nothing is sent that the controller must refuse.
[[nodiscard]] OrFailure<void> CheckFitsModel(const Region& region, std::string_view model);

// Whether all values can be written to operands of the type from `from` on. The failure names the first that cannot,
// and what can be. `model` decides how a time is written; while it is not known (empty) a time of either family passes.
[[nodiscard]] OrFailure<void> CheckValues(OperandTypeCode type, std::string_view model,
                                          std::span<const std::string> texts);

}  // namespace kv::cli
