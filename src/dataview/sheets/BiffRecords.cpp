#include "dataview/sheets/BiffRecords.h"

#include <algorithm>
#include <bit>

namespace kv {

void BiffRecords::Begin(std::uint16_t type) {
  AppendLittleEndian(mBytes, type);
  AppendLittleEndian(mBytes, std::uint16_t{0});
  mData = mBytes.size();
}

void BiffRecords::End() {
  const std::size_t length = OpenSize();
  mBytes[mData - 2] = static_cast<char>(length & 0xFF);
  mBytes[mData - 1] = static_cast<char>(length >> 8);
}

BiffRecords& BiffRecords::U8(std::uint8_t value) {
  AppendLittleEndian(mBytes, value);
  return *this;
}

BiffRecords& BiffRecords::U16(std::size_t value) {
  AppendLittleEndian(mBytes, static_cast<std::uint16_t>(value));
  return *this;
}

BiffRecords& BiffRecords::U32(std::size_t value) {
  AppendLittleEndian(mBytes, static_cast<std::uint32_t>(value));
  return *this;
}

BiffRecords& BiffRecords::F64(double value) {
  AppendLittleEndian(mBytes, std::bit_cast<std::uint64_t>(value));
  return *this;
}

BiffRecords& BiffRecords::ShortText(std::u16string_view text) {
  U8(static_cast<std::uint8_t>(text.size()));
  Units(text);
  return *this;
}

BiffRecords& BiffRecords::LongText(std::u16string_view text) {
  U16(text.size());
  Units(text);
  return *this;
}

void BiffRecords::Units(std::u16string_view text) {
  const bool isLatin = std::ranges::all_of(text, [](char16_t unit) { return unit <= 0xFF; });
  U8(isLatin ? 0 : 1);
  for (const char16_t unit : text) {
    if (isLatin) {
      U8(static_cast<std::uint8_t>(unit));
    } else {
      U16(unit);
    }
  }
}

void BiffRecords::Words(std::uint16_t type, std::initializer_list<std::uint16_t> words) {
  Begin(type);
  for (const std::uint16_t word : words) U16(word);
  End();
}

void BiffRecords::Bytes(std::uint16_t type, std::string_view bytes) {
  Begin(type);
  mBytes += bytes;
  End();
}

void BiffRecords::PutU32(std::size_t at, std::size_t value) {
  std::string bytes;
  AppendLittleEndian(bytes, static_cast<std::uint32_t>(value));
  mBytes.replace(at, bytes.size(), bytes);
}

}  // namespace kv
