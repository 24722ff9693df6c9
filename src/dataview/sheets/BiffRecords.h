#pragma once

#include "base/LittleEndian.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kv {

// Builds a stream of BIFF8 records, each a type, a length and its data. One record is open at a time.
class BiffRecords {
 public:
  void Begin(std::uint16_t type);
  void End();  // fills in the length

  BiffRecords& U8(std::uint8_t value);
  BiffRecords& U16(std::size_t value);
  BiffRecords& U32(std::size_t value);
  BiffRecords& F64(double value);
  // A text behind its length in units, which takes one or two bytes; Latin-1 where that is enough, else UTF-16.
  BiffRecords& ShortText(std::u16string_view text);
  BiffRecords& LongText(std::u16string_view text);

  // A whole record of 16-bit words, and one of bytes.
  void Words(std::uint16_t type, std::initializer_list<std::uint16_t> words);
  void Bytes(std::uint16_t type, std::string_view bytes);

  [[nodiscard]] std::size_t Size() const { return mBytes.size(); }  // also where the next record will stand
  [[nodiscard]] std::size_t OpenSize() const { return mBytes.size() - mData; }
  void PutU32(std::size_t at, std::size_t value);  // over what stands there

  [[nodiscard]] const std::string& Stream() const { return mBytes; }

 private:
  void Units(std::u16string_view text);

  std::string mBytes;
  std::size_t mData = 0;  // where the open record's data begins
};

}  // namespace kv
