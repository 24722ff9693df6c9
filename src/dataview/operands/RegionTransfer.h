#pragma once

#include <cstdint>
#include <expected>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "dataview/operands/Region.h"
#include "link/Channel.h"
#include "link/LinkError.h"

// Reads and writes one region, as it stands, with one request. `model` is the host's model; it decides the path: Q50
// and Q50Net are read with one operation a type, all others (AurexQ50 among them) with the list read.
//
// Raw value texts, one an operand:
//   bits, timer and counter bits   "0" or "1"
//   16-bit and 32-bit numbers      decimal, signed or unsigned as the type is
//   MF                             general decimal form, at most 7 significant digits ("nan" and "inf" as such)
//   timers                         hh:mm:ss.cc, or whole milliseconds where the model is read with one operation a type
//
// A region that is none (type, addresses 0 to 32767, no more operands than one request carries) is an error and sends
// nothing.
namespace kv::mdlDataTypesView {

// Shown once for a write of several regions, some of which are of read-only types.
inline constexpr std::string_view kReadOnlyRegionsMessage =
    "Values cannot be written to some of the defined regions. \r\n"
    "This is because the defined regions include data types that cannot be written to in the controller. \r\n"
    "All legal values will be written to permitted regions.";

// Whether operands of this type can be read from this model at all. DBI has no list read.
[[nodiscard]] bool IsReadableFrom(std::string_view model, OperandTypeCode type);

// What to do about a region that ends past the operands that the model has.
[[nodiscard]] std::string PastEndCure(const Region& region, std::string_view model);

// How many digits the texts of floats have.
enum class FloatDigits : std::uint8_t { Shown, Exact };

// The region's raw value texts in address order. None, and nothing sent, for a type that such a controller does not
// have. A type without a list read, where one is needed, is an error and sends nothing.
[[nodiscard]] std::expected<std::vector<std::string>, LinkError> ReadRegion(Channel& channel, std::string_view model,
                                                                            const Region& region,
                                                                            FloatDigits digits = FloatDigits::Shown);

// Writes the raw value texts, one an operand of the region. All are converted first: one that cannot be is an
// error that names it, and nothing is sent. For a read-only type it does nothing.
[[nodiscard]] std::expected<void, LinkError> WriteRegion(Channel& channel, std::string_view model, const Region& region,
                                                         std::span<const std::string> texts);

}  // namespace kv::mdlDataTypesView
