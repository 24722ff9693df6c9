#include "base/Crc32.h"

#include <array>

#if defined(__x86_64__) && defined(__GNUC__)
#define KV_CAN_FOLD 1
#include <immintrin.h>
#else
#define KV_CAN_FOLD 0
#endif

namespace kv {
namespace {

// Eight bytes a step: table k holds the remainder of a byte that is followed by k zero bytes, so the eight look-ups of
// a step do not wait for each other.
constexpr std::size_t kStep = 8;
constexpr std::uint32_t kPolynomial = 0xEDB88320U;
using Table = std::array<std::uint32_t, 256>;

// The remainder after one more zero bit.
constexpr std::uint32_t TimesX(std::uint32_t rest) {
  return (rest >> 1) ^ ((rest & 1U) != 0 ? kPolynomial : 0U);
}

constexpr std::array<Table, kStep> MakeTables() {
  std::array<Table, kStep> tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t rest = byte;
    for (int bit = 0; bit < 8; ++bit) rest = TimesX(rest);
    tables[0][byte] = rest;
  }
  for (std::size_t k = 1; k < kStep; ++k) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t before = tables[k - 1][byte];
      tables[k][byte] = (before >> 8) ^ tables[0][before & 0xFFU];
    }
  }
  return tables;
}

constexpr std::array<Table, kStep> kTables = MakeTables();

std::uint32_t LittleEndian(const char* bytes) {
  const auto at = [bytes](int i) { return std::uint32_t{static_cast<unsigned char>(bytes[i])}; };
  return at(0) | at(1) << 8 | at(2) << 16 | at(3) << 24;
}

// The remainder of `bytes` behind what left `crc`.
std::uint32_t ByTables(std::string_view bytes, std::uint32_t crc) {
  for (; bytes.size() >= kStep; bytes.remove_prefix(kStep)) {
    const std::uint32_t low = crc ^ LittleEndian(bytes.data());
    const std::uint32_t high = LittleEndian(bytes.data() + 4);
    crc = kTables[7][low & 0xFFU] ^ kTables[6][low >> 8 & 0xFFU] ^ kTables[5][low >> 16 & 0xFFU] ^
          kTables[4][low >> 24] ^ kTables[3][high & 0xFFU] ^ kTables[2][high >> 8 & 0xFFU] ^
          kTables[1][high >> 16 & 0xFFU] ^ kTables[0][high >> 24];
  }
  for (const char c : bytes) crc = (crc >> 8) ^ kTables[0][(crc ^ static_cast<unsigned char>(c)) & 0xFFU];
  return crc;
}

#if KV_CAN_FOLD

// x to the power of `exponent` modulo the polynomial, as carry-less multiplication of reflected numbers wants it: one
// place to the left.
constexpr long long PowerOfX(int exponent) {
  std::uint32_t rest = 0x80000000U;  // x to the power of 0
  for (int i = 0; i < exponent; ++i) rest = TimesX(rest);
  return static_cast<long long>(std::uint64_t{rest} << 1);
}

constexpr std::size_t kBlock = 16;

// Folds 16 bytes a step into the 16 behind them, as in Gopal and others, "Fast CRC Computation for Generic Polynomials
// Using PCLMULQDQ Instruction" (Intel, 2009). The last 16 have the remainder of all and go through the tables. A
// message of 150 bytes by tables alone took 2 % of an exchange over TCP at each end.
__attribute__((target("sse2,pclmul"))) std::uint32_t ByFolding(std::string_view bytes, std::uint32_t crc) {
  const auto load = [](const char* at) __attribute__((target("sse2,pclmul"))) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  };
  constexpr long long kHigh = PowerOfX(128 - 32);
  constexpr long long kLow = PowerOfX(128 + 32);
  const __m128i powers = _mm_set_epi64x(kHigh, kLow);
  __m128i folded = _mm_xor_si128(load(bytes.data()), _mm_cvtsi32_si128(static_cast<int>(crc)));
  for (bytes.remove_prefix(kBlock); bytes.size() >= kBlock; bytes.remove_prefix(kBlock)) {
    const __m128i low = _mm_clmulepi64_si128(folded, powers, 0x00);
    const __m128i high = _mm_clmulepi64_si128(folded, powers, 0x11);
    folded = _mm_xor_si128(_mm_xor_si128(low, high), load(bytes.data()));
  }
  std::array<char, kBlock> last;
  _mm_storeu_si128(reinterpret_cast<__m128i*>(last.data()), folded);
  return ByTables(bytes, ByTables({last.data(), last.size()}, 0));
}

bool CanFold() {
  static const bool kCan = __builtin_cpu_supports("pclmul") != 0;
  return kCan;
}

#endif

}  // namespace

std::uint32_t Crc32(std::string_view bytes, std::uint32_t previous) {
#if KV_CAN_FOLD
  if (bytes.size() >= 2 * kBlock && CanFold()) return ~ByFolding(bytes, ~previous);
#endif
  return ~ByTables(bytes, ~previous);
}

}  // namespace kv
