#pragma once

#include <cstddef>
#include <cstdint>

// The status of an Aurex controller that takes a download: what is asked for, and where the reply has what.
namespace kv::FlashStatus {

inline constexpr std::uint32_t kLength = 106;
inline constexpr std::size_t kShortest = 10;  // bytes that tell all that is read here

inline constexpr std::size_t kFlashError = 1;  // 0: none
inline constexpr std::size_t kActivity = 2;
inline constexpr std::size_t kPercent = 3;  // of the programming
inline constexpr std::size_t kTopicCount = 8;
inline constexpr std::size_t kIsWhole = 9;        // what was sent last, or all of a project; 0: not
inline constexpr std::size_t kIsProgrammed = 10;  // of a boot loader: the new O/S; 0: not, or a shorter status

inline constexpr std::uint8_t kIdle = 'I';

}  // namespace kv::FlashStatus
