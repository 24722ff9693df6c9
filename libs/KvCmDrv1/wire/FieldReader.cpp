#include "KvCmDrv1/wire/FieldReader.h"

#include "base/Hex.h"

namespace kv {

std::uint32_t FieldReader::Hex(std::size_t digits) {
  const auto value = ParseUpperHex(Take(digits));
  if (!value) Fail();
  return mGood ? *value : 0;
}

void FieldReader::Expect(std::string_view characters) {
  if (Take(characters.size()) != characters) Fail();
}

void FieldReader::ExpectHex(std::uint32_t value, std::size_t digits) {
  if (Hex(digits) != value) Fail();
}

std::string_view FieldReader::Take(std::size_t count) {
  if (!mGood || mRest.size() < count) {
    Fail();
    return {};
  }
  const std::string_view taken = mRest.substr(0, count);
  mRest.remove_prefix(count);
  return taken;
}

}  // namespace kv
