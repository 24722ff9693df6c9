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

// The number of bytes is known when this is compiled: a value is then written at once.
template <std::size_t kBytes>
void Put(const Column& column, std::endian order) {
  char* place = column.place;
  for (std::size_t i = 0; i < column.values.size(); i += column.width, place += column.stride) {
    for (std::size_t byte = 0; byte < kBytes; ++byte) {
      const std::size_t at = order == std::endian::little ? byte : kBytes - 1 - byte;
      place[at] = static_cast<char>(column.values[i] >> 8 * byte & 0xFF);
    }
  }
}

void Put(const Column& column, std::size_t bytes, std::endian order) {
  switch (bytes) {
    case 1:
      return Put<1>(column, order);
    case 2:
      return Put<2>(column, order);
    default:
      return Put<4>(column, order);
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
    Put({values.subspan(field), type.fields, place, stride}, width, order);
    place += width;
  }
}

}  // namespace sim
