#include "desktop/console/HarmlessText.h"

#include "base/Hex.h"

namespace kv {
namespace {

// How many bytes a letter has that begins with this one; 0 for a byte that begins none.
std::size_t LengthOf(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

std::string Shown(std::string_view bytes) {
  std::string text;
  for (const char c : bytes) text += "<" + ToHex(static_cast<unsigned char>(c), 2) + ">";
  return text;
}

bool IsControl(std::string_view letter) {
  const auto first = static_cast<unsigned char>(letter[0]);
  if (letter.size() == 2) return first == 0xC2 && static_cast<unsigned char>(letter[1]) < 0xA0;
  return letter.size() == 1 && (first < 0x20 || first == 0x7F);
}

std::string ShownLetter(std::string_view letter, std::string_view kept) {
  if (!IsControl(letter) || kept.find(letter) != std::string_view::npos) return std::string(letter);
  return Shown(letter.substr(letter.size() - 1));  // the second byte is the character's number
}

// Takes whole letters from `bytes`; what is left there is the beginning of one.
std::string TakeHarmless(std::string& bytes, std::string_view kept) {
  std::string text;
  std::size_t at = 0;
  while (at < bytes.size()) {
    const std::size_t length = LengthOf(static_cast<unsigned char>(bytes[at]));
    std::size_t there = 1;
    while (there < length && at + there < bytes.size() && (bytes[at + there] & 0xC0) == 0x80) ++there;
    if (there < length && at + there == bytes.size()) break;
    const std::string_view piece = std::string_view(bytes).substr(at, there);
    text += there == length ? ShownLetter(piece, kept) : Shown(piece);
    at += there;
  }
  bytes.erase(0, at);
  return text;
}

}  // namespace

std::string HarmlessText(std::string_view text, std::string_view kept) {
  std::string bytes(text);
  std::string harmless = TakeHarmless(bytes, kept);
  return harmless + Shown(bytes);
}

HarmlessBuffer::int_type HarmlessBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char byte = traits_type::to_char_type(c);
  return xsputn(&byte, 1) == 1 ? c : traits_type::eof();
}

std::streamsize HarmlessBuffer::xsputn(const char* text, std::streamsize size) {
  mBegun.append(text, static_cast<std::size_t>(size));
  mTarget << TakeHarmless(mBegun, mKept);
  return mTarget ? size : 0;
}

int HarmlessBuffer::sync() {
  mTarget.flush();
  return mTarget ? 0 : -1;
}

}  // namespace kv
