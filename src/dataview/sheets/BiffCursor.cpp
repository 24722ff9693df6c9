#include "dataview/sheets/BiffCursor.h"

#include <algorithm>

#include "base/LittleEndian.h"
#include "base/Utf8.h"

namespace kv {
namespace {

constexpr std::size_t kHeadSize = 4;
constexpr std::uint16_t kContinue = 0x003C;

// What the flags in front of a text say.
constexpr unsigned kWide = 0x01;
constexpr unsigned kWithSounds = 0x04;
constexpr unsigned kWithFonts = 0x08;

}  // namespace

std::optional<BiffRecord> TakeRecord(std::string_view stream, std::size_t& offset) {
  BiffRecord record{.offset = offset};
  do {
    if (offset > stream.size() || stream.size() - offset < kHeadSize) return std::nullopt;
    const std::size_t length = LittleEndianAt<std::uint16_t>(stream, offset + 2);
    if (stream.size() - offset - kHeadSize < length) return std::nullopt;
    if (record.pieces.empty()) record.type = LittleEndianAt<std::uint16_t>(stream, offset);
    record.pieces.push_back(stream.substr(offset + kHeadSize, length));
    offset += kHeadSize + length;
  } while (offset + kHeadSize <= stream.size() && LittleEndianAt<std::uint16_t>(stream, offset) == kContinue);
  return record;
}

BiffCursor::BiffCursor(const BiffRecord& record, std::size_t skipped) : mPieces(record.pieces) {
  Skip(skipped);
}

std::uint8_t BiffCursor::U8() {
  while (AtJoint()) {
    ++mPiece;
    mAt = 0;
  }
  if (mAt >= mPieces[mPiece].size()) {
    mFailed = true;
    return 0;
  }
  return static_cast<std::uint8_t>(mPieces[mPiece][mAt++]);
}

std::uint16_t BiffCursor::U16() {
  const unsigned low = U8();
  return static_cast<std::uint16_t>(low | unsigned{U8()} << 8);
}

std::uint32_t BiffCursor::U32() {
  const std::uint32_t low = U16();
  return low | std::uint32_t{U16()} << 16;
}

void BiffCursor::Skip(std::size_t count) {
  while (count > 0 && !mFailed) {
    const std::size_t here = std::min(count, mPieces[mPiece].size() - mAt);
    mAt += here;
    count -= here;
    if (count == 0) break;
    if (AtJoint()) {
      ++mPiece;
      mAt = 0;
    } else {
      mFailed = true;
    }
  }
}

std::string BiffCursor::Text(std::size_t units) {
  const unsigned flags = U8();
  const std::size_t fonts = (flags & kWithFonts) != 0 ? U16() : 0;
  const std::size_t sounds = (flags & kWithSounds) != 0 ? U32() : 0;
  bool isWide = (flags & kWide) != 0;
  std::u16string text;
  while (text.size() < units && !mFailed) {
    if (AtJoint()) isWide = (U8() & kWide) != 0;  // each piece says anew how it is written
    text += static_cast<char16_t>(isWide ? U16() : U8());
  }
  Skip(4 * fonts);
  Skip(sounds);
  return Utf8FromUtf16(text);
}

}  // namespace kv
