#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

// `size` bytes that depend on the seed alone: words that repeat, with some chance between them.
[[nodiscard]] std::string SampleBytes(std::size_t size, std::uint32_t seed);

// The text, cut or filled up with zero bytes.
[[nodiscard]] std::string Padded(std::string_view text, std::size_t size);

// The number's last digits, with zeros in front.
[[nodiscard]] std::string Digits(int number, std::size_t digits);

// Puts the CRC-32 of `file`, in which its own four bytes count as zero, at `offset`.
void PutCheck(std::string& file, std::size_t offset);

}  // namespace sim
