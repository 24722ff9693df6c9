#include "KvTele2/ui/PanelScale.h"

#include <algorithm>
#include <cmath>

namespace kv {
namespace {

constexpr const char* kFit = "Fit";
// A picture that is less than so much smaller with whole dots is shown with them: sharp is worth more than large.
constexpr double kWorthWhole = 0.85;

int WholeRatio(double ratio) {
  return std::max(1, static_cast<int>(std::lround(ratio)));
}

}  // namespace

PanelScale PanelScale::Named(const QString& name) {
  for (int multiple = 1; multiple <= kLargest; ++multiple) {
    if (PanelScale(multiple).Name() == name) return PanelScale(multiple);
  }
  return {};
}

QString PanelScale::Name() const {
  return Fits() ? QString(kFit) : QString::number(mMultiple) + ":1";
}

double PanelScale::Factor(QSize dots, QSizeF room, double ratio) const {
  if (!Fits()) return mMultiple * WholeRatio(ratio);
  if (dots.isEmpty() || room.isEmpty()) return 1;
  const double factor = std::min(room.width() * ratio / dots.width(), room.height() * ratio / dots.height());
  const double whole = std::floor(factor);
  return whole >= 1 && whole >= kWorthWhole * factor ? whole : factor;
}

QSize PanelScale::Asked(QSize dots, double ratio) const {
  if (Fits()) return {};
  const double logical = mMultiple * WholeRatio(ratio) / ratio;
  return {static_cast<int>(std::ceil(dots.width() * logical)), static_cast<int>(std::ceil(dots.height() * logical))};
}

QRectF PlaceOfPicture(QSize dots, QSizeF room, double factor, double ratio) {
  const QSizeF size(dots.width() * factor, dots.height() * factor);
  const auto begin = [](double free) { return std::floor(std::max(free, 0.0) / 2); };
  return {begin(room.width() * ratio - size.width()) / ratio, begin(room.height() * ratio - size.height()) / ratio,
          size.width() / ratio, size.height() / ratio};
}

}  // namespace kv
