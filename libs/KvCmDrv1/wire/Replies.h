#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "KvCmDrv1/wire/OperandTypes.h"
#include "link/Channel.h"

namespace kv {

// Readers of reply texts (without seal) and of reply payloads. Each checks echo, tag, type, start, count, length and
// digits, and gives nothing when anything of it is not what the request asked for.

// The code of a refusal of `request`, 1 to 255; nothing when `reply` is none.
[[nodiscard]] std::optional<int> ReadRefusal(std::string_view reply, std::string_view request);

// Whether `reply` begins with the letters and the tag of `request`, as every reply to a command with a tag does.
[[nodiscard]] bool EchoesTag(std::string_view reply, std::string_view request);

[[nodiscard]] std::optional<VersionInfo> ReadIdentification(std::string_view reply);
[[nodiscard]] std::optional<Channel::ControllerInfo> ReadInformation(std::string_view reply, std::uint16_t tag);
[[nodiscard]] bool ReadsAccessGiven(std::string_view reply, std::uint16_t tag);

// The values of operands, NumbersOf() numbers for each.
[[nodiscard]] std::optional<OperandListValues> ReadOperandValues(std::string_view reply, std::uint16_t tag,
                                                                 const OperandRange& range);
[[nodiscard]] bool ReadsWriteDone(std::string_view reply, std::uint16_t tag, const OperandRange& range);

// Fills `bytes`, which is as long as what was asked for; false leaves it of no use.
[[nodiscard]] bool ReadMemoryBytes(std::string_view reply, std::uint16_t tag, std::uint32_t address,
                                   std::span<std::uint8_t> bytes);

// What SY tells: the last request other than a read that was executed since power-up.
struct SynchronisationReply {
  std::uint16_t counter = 0;  // of that request's seal; 0: there was none
  std::uint32_t check = 0;    // CRC-32 of that request's text
  std::uint16_t powerUp = 0;  // another number after each power-up
  std::string_view reply;     // the first 40 characters of its reply text
};
[[nodiscard]] std::optional<SynchronisationReply> ReadSynchronisation(std::string_view reply, std::uint16_t tag);

// The values of an operand list, one array for each range.
[[nodiscard]] std::optional<std::vector<OperandListValues>> ReadListPayload(std::string_view payload,
                                                                            std::span<const OperandRange> ranges);

}  // namespace kv
