#include "base/LineReader.h"

#include "base/Crc32.h"
#include "base/Hex.h"

namespace kv {
namespace {

constexpr std::size_t kCheckDigits = 8;

}  // namespace

bool LineReader::Next() {
  const std::string_view end = mEnd == End::CrLf ? "\r\n" : "\n";
  mStart = mNext;
  mIsEnded = false;
  mLine = {};
  ++mNumber;
  if (IsAtEnd()) return false;
  const std::size_t at = mText.find(end, mStart);
  mIsEnded = at != std::string_view::npos;
  mLine = mText.substr(mStart, at - mStart);
  mNext = mIsEnded ? at + end.size() : mText.size();
  if (mEnd == End::Lf && mLine.ends_with('\r')) mLine.remove_suffix(1);
  return true;
}

std::unexpected<LineError> LineReader::Expected(std::string_view what) const {
  return std::unexpected(LineError{mNumber, "expected " + std::string(what)});
}

std::string WithCheckLine(std::string lines, std::string_view lineEnd) {
  const std::uint32_t check = Crc32(lines);
  lines += kCheckWord;
  AppendHex(lines, check, kCheckDigits);
  return lines.append(lineEnd);
}

bool IsCheckLine(std::string_view line, std::string_view before) {
  if (!line.starts_with(kCheckWord)) return false;
  const std::string_view digits = line.substr(kCheckWord.size());
  return digits.size() == kCheckDigits && ParseHex(digits) == Crc32(before);
}

}  // namespace kv
