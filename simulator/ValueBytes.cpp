#include "simulator/ValueBytes.h"

#include <cstddef>

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
template <std::size_t kBytes, std::endian kOrder>
void Put(const Column& column) {
  char* place = column.place;
  for (std::size_t i = 0; i < column.values.size(); i += column.width, place += column.stride) {
    const std::uint32_t value = column.values[i];
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
      place[kOrder == std::endian::little ? byte : kBytes - 1 - byte] = static_cast<char>(value >> 8 * byte & 0xFF);
    }
  }
}

template <std::endian kOrder>
void Put(const Column& column, std::size_t bytes) {
  switch (bytes) {
    case 1:
      return Put<1, kOrder>(column);
    case 2:
      return Put<2, kOrder>(column);
    default:
      return Put<4, kOrder>(column);
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
