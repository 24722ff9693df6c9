#include "dataview/ui/GridColours.h"

#include "dataview/operands/OperandCatalogue.h"

namespace kv::mdlDataTypesView {
namespace {

constexpr int kHalfLight = 128;  // of 255
constexpr double kFaint = 0.4;   // how far faint text goes towards its background
constexpr double kFrame = 0.35;  // the same of frames

// A grid colour value has blue in its high byte.
QColor FromGridValue(std::uint32_t value) {
  return {static_cast<int>(value & 0xFF), static_cast<int>(value >> 8 & 0xFF), static_cast<int>(value >> 16 & 0xFF)};
}

}  // namespace

const QColor& GridColours::OfType(OperandTypeCode type) const {
  return IsWritableType(type) ? writable : readOnly;
}

QColor Blend(const QColor& below, const QColor& above, double share) {
  const auto mix = [share](int a, int b) { return static_cast<int>(a + (b - a) * share); };
  return {mix(below.red(), above.red()), mix(below.green(), above.green()), mix(below.blue(), above.blue())};
}

GridColours ColoursFor(const QPalette& palette) {
  const bool isDark = palette.color(QPalette::Base).lightness() < kHalfLight;
  const QColor text = palette.color(QPalette::Text);
  const QColor base = palette.color(QPalette::Base);
  return {
      .writable = isDark ? QColor(0x1d, 0x3b, 0x46) : FromGridValue(kWritableColour),
      .readOnly = isDark ? QColor(0x4a, 0x39, 0x14) : FromGridValue(kReadOnlyColour),
      .unusable = palette.color(QPalette::Window),
      .text = text,
      .faint = Blend(text, base, kFaint),
      .selection = palette.color(QPalette::Highlight),
      .change = isDark ? QColor(0x4f, 0xa8, 0x4a) : QColor(0x3c, 0xa0, 0x37),
      .edited = isDark ? QColor(0xff, 0x9e, 0x64) : QColor(0xb8, 0x3a, 0x0a),
      .fault = isDark ? QColor(0xff, 0x6b, 0x60) : QColor(0xc6, 0x1f, 0x1a),
      .region = Blend(text, base, kFrame),
  };
}

}  // namespace kv::mdlDataTypesView
