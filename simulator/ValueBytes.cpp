#include "simulator/ValueBytes.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace sim {
namespace {

// Where the values of one field are, and where they go: `width` values and `stride` bytes lie between two of them.
struct Column {
  std::span<const std::uint32_t> values;
  std::size_t width;
  char* place;
  std::size_t stride;
};

// Number and order of the bytes are known when this is compiled: a value is then written at once.
template <typename Number, std::endian kOrder>
void PutOne(char* place, std::uint32_t value) {
  auto number = static_cast<Number>(value);
  if constexpr (kOrder != std::endian::native) number = std::byteswap(number);
  std::memcpy(place, &number, sizeof number);
}

template <typename Number, std::endian kOrder>
void Put(const Column& column) {
  constexpr std::size_t kBytes = sizeof(Number);
  const std::size_t count = column.values.size();
  char* place = column.place;
  if (column.width == 1 && column.stride == kBytes) {  // nothing lies between: the compiler does many values at once
    for (std::size_t i = 0; i < count; ++i) PutOne<Number, kOrder>(place + i * kBytes, column.values[i]);
    return;
  }
  for (std::size_t i = 0; i < count; i += column.width, place += column.stride) {
    PutOne<Number, kOrder>(place, column.values[i]);
  }
}

template <std::endian kOrder>
void Put(const Column& column, std::size_t bytes) {
  switch (bytes) {
    case 1:
      return Put<std::uint8_t, kOrder>(column);
    case 2:
      return Put<std::uint16_t, kOrder>(column);
    default:
      return Put<std::uint32_t, kOrder>(column);
  }
}

}  // namespace

void AppendValues(std::string& bytes, const OperandTypeRow& type, std::span<const std::uint32_t> values,
                  std::endian order) {
  const std::size_t stride = type.Digits() / 2;
  const std::size_t before = bytes.size();
  bytes.resize(before + values.size() / type.fields * stride);
  char* place = bytes.data() + before;
  for (std::size_t field = 0; field < type.fields; ++field) {
    const std::size_t width = type.digits[field] / 2U;
    const Column column{values.subspan(field), type.fields, place, stride};
    order == std::endian::little ? Put<std::endian::little>(column, width) : Put<std::endian::big>(column, width);
    place += width;
  }
}

}  // namespace sim
