#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>

#include "dataview/operands/Region.h"
#include "link/Channel.h"
#include "link/LinkError.h"

// Whether the O/S in the controller has all operands of the regions: an older one has fewer of them.
namespace kv::mdlDataTypesView {

inline constexpr std::string_view kRegionsNotSupportedMessage =
    "Some of the defined regions are not supported by the O/S currently installed in the controller.";

// Whether an O/S, as the controller reports its version, has the present operand counts: from 1.1 on for colour models
// and the K230, from 3.00 on for all others. A version that cannot be read counts as older.
[[nodiscard]] bool IsOsCurrent(std::string_view model, std::string_view osVersion);

// How many operands of the type the controller has with this O/S, from address 0 on.
[[nodiscard]] std::int32_t OperandCountWithOs(OperandTypeCode type, std::string_view model, std::string_view osVersion);

// Whether all regions end within what the controller has with this O/S. As with IsPastOperandCount, a region that ends
// at the count itself passes.
[[nodiscard]] bool AreRegionsSupported(std::string_view model, std::string_view osVersion,
                                       std::span<const Region> regions);

// The O/S version of the controller that answers, which must be of the model: another one has other operands behind the
// same addresses, and is another machine.
[[nodiscard]] std::expected<std::string, LinkError> OsVersionOf(Channel& channel, std::string_view model);

}  // namespace kv::mdlDataTypesView
