#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

// A record of a BIFF8 stream, with the CONTINUE records behind it.
struct BiffRecord {
  std::uint16_t type = 0;
  std::vector<std::string_view> pieces = {};  // at least one
  std::size_t offset = 0;                     // of the record in the stream

  [[nodiscard]] std::string_view Data() const { return pieces.front(); }
};

// Takes the record at `offset` and moves that behind it; nothing when the stream ends before the record does.
[[nodiscard]] std::optional<BiffRecord> TakeRecord(std::string_view stream, std::size_t& offset);

// Reads through the pieces of a record. Texts are read across the joints, where their kind of units may change.
// Numbers, and what is to be skipped, run through them. Past the end everything is 0 and Failed().
class BiffCursor {
 public:
  explicit BiffCursor(const BiffRecord& record, std::size_t skipped = 0);

  [[nodiscard]] std::uint8_t U8();
  [[nodiscard]] std::uint16_t U16();
  [[nodiscard]] std::uint32_t U32();
  // A text of so many units, with its flags in front of it and fonts and sounds behind it; UTF-8.
  [[nodiscard]] std::string Text(std::size_t units);
  void Skip(std::size_t count);

  [[nodiscard]] bool Failed() const { return mFailed; }

 private:
  [[nodiscard]] bool AtJoint() const { return mAt == mPieces[mPiece].size() && mPiece + 1 < mPieces.size(); }

  const std::vector<std::string_view>& mPieces;
  std::size_t mPiece = 0;
  std::size_t mAt = 0;
  bool mFailed = false;
};

}  // namespace kv
