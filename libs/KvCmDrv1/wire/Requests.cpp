#include "KvCmDrv1/wire/Requests.h"

#include "base/Crc32.h"
#include "base/Hex.h"
#include "link/LinkLimits.h"
#include "secret/Secret.h"

namespace kv {

std::string_view RequestWriter::ReadOperands(std::uint8_t unit, std::uint16_t tag, const OperandRange& range) {
  Begin("RO", tag);
  AddRange(range);
  return Finish(unit);
}

std::string_view RequestWriter::WriteOperands(std::uint8_t unit, std::uint16_t tag, const OperandRange& range,
                                              std::span<const std::uint32_t> values) {
  Begin("WO", tag);
  AddRange(range);
  const std::size_t digits = DigitsOf(range.type->shape);
  for (const std::uint32_t value : values) AppendHex(mText, value, digits);
  return Finish(unit);
}

std::string_view RequestWriter::ReadMemory(std::uint8_t unit, std::uint16_t tag, std::uint32_t address,
                                           std::uint32_t length) {
  Begin("RM", tag);
  AppendHex(mText, address, 8);
  AppendHex(mText, length, 4);
  return Finish(unit);
}

std::string_view RequestWriter::Information(std::uint8_t unit, std::uint16_t tag) {
  Begin("IN", tag);
  return Finish(unit);
}

std::string_view RequestWriter::GiveAccess(std::uint8_t unit, std::uint16_t tag, std::string_view password) {
  Begin("AC", tag);
  for (std::size_t i = 0; i < kLongestPassword; ++i) {
    AppendHex(mText, i < password.size() ? static_cast<unsigned char>(password[i]) : ' ', 2);
  }
  return Finish(unit);
}

std::string_view RequestWriter::Synchronise(std::uint8_t unit, std::uint16_t tag) {
  Begin("SY", tag);
  return Finish(unit);
}

std::string_view RequestWriter::Panel(std::string_view letters, std::uint8_t unit, std::uint16_t tag,
                                      std::string_view data) {
  Begin(letters, tag);
  for (const char byte : data) AppendHex(mText, static_cast<unsigned char>(byte), 2);
  return Finish(unit);
}

void RequestWriter::WipeText() {
  Wipe(mText);
}

void RequestWriter::Begin(std::string_view letters, std::uint16_t tag) {
  mText = letters;
  AppendHex(mText, tag, kTagDigits);
}

void RequestWriter::AddRange(const OperandRange& range) {
  AppendHex(mText, static_cast<std::uint32_t>(range.type->code), 2);
  AppendHex(mText, range.start, 4);
  AppendHex(mText, range.count, 4);
}

std::string_view RequestWriter::Finish(std::uint8_t unit) {
  const std::size_t body = mText.size();
  AppendHex(mText, unit, 2);
  const std::uint32_t ofUnit = Crc32(std::string_view(mText).substr(body));
  mText.resize(body);
  AppendHex(mText, Crc32(mText, ofUnit), 8);
  return mText;
}

}  // namespace kv
