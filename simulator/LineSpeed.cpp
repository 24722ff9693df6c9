#include "simulator/LineSpeed.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace sim {
namespace {

constexpr std::size_t kBits = 10;  // start, eight of data, stop

// The level of the line while bit `bit` of the stream is on it: idle is high, a start bit low, data follow lowest
// first, a stop bit is high.
bool LevelOf(std::string_view bytes, std::size_t bit) {
  if (bit >= bytes.size() * kBits) return true;
  const std::size_t place = bit % kBits;
  if (place == 0 || place == kBits - 1) return place != 0;
  return (static_cast<unsigned char>(bytes[bit / kBits]) >> (place - 1) & 1U) != 0;
}

// Looks at the line as a receiver does. Times count in parts of a bit, so that both speeds divide them.
class Receiver {
 public:
  Receiver(std::string_view bytes, int sentBaud, int heardBaud) : mBytes(bytes), mSentBit(heardBaud), mBit(sentBaud) {}

  std::string Hear() {
    std::string heard;
    const std::int64_t end = static_cast<std::int64_t>(mBytes.size() * kBits) * mSentBit;
    while (FindStart(end)) heard += TakeByte();
    return heard;
  }

 private:
  [[nodiscard]] bool LevelAt(std::int64_t time) const {
    return LevelOf(mBytes, static_cast<std::size_t>(time / mSentBit));
  }

  // A start bit is a fall from high to low.
  bool FindStart(std::int64_t end) {
    bool wasHigh = mNow == 0 || LevelAt(mNow);
    while (mNow < end) {
      const bool isHigh = LevelAt(mNow);
      if (wasHigh && !isHigh) return true;
      wasHigh = isHigh;
      mNow = (mNow / mSentBit + 1) * mSentBit;  // levels change between bits only
    }
    return false;
  }

  // A stop bit that is low is an error of the framing; the byte is handed on all the same, as most receivers do.
  char TakeByte() {
    unsigned value = 0;
    for (int i = 0; i < 8; ++i) {
      if (LevelAt(mNow + mBit * (i + 1) + mBit / 2)) value |= 1U << i;
    }
    mNow += mBit * 9 + mBit / 2;
    return static_cast<char>(value);
  }

  std::string_view mBytes;
  std::int64_t mSentBit;  // one bit of the sender
  std::int64_t mBit;      // one bit of the receiver
  std::int64_t mNow = 0;
};

}  // namespace

std::string HeardAt(std::string bytes, int sentBaud, int heardBaud) {
  if (sentBaud <= 0 || heardBaud <= 0 || sentBaud == heardBaud) return bytes;
  return Receiver(bytes, sentBaud, heardBaud).Hear();
}

}  // namespace sim
