#include "ui/kit/SliderGeometry.h"

#include <algorithm>
#include <cmath>

namespace ventolith::ui {
namespace {

constexpr double minimumTickDistance = 3;

} // namespace

double SliderRange::admitted(double value) const {
  if (!(value > minimum)) return minimum;
  if (value >= maximum) return std::max(minimum, maximum);
  if (step <= 0) return value;
  return std::min(minimum + std::round((value - minimum) / step) * step, maximum);
}

double SliderGeometry::fraction(double value) const {
  if (!(range.span() > 0) || !(value > range.minimum)) return 0;
  return std::min((value - range.minimum) / range.span(), 1.0);
}

QPointF SliderGeometry::knobCentre(double value) const {
  const double travel = std::max(width - knobDiameter, 0.0);
  const double gone = fraction(value) * travel;
  return {isMirrored ? width - knobRadius - gone : knobRadius + gone, height / 2};
}

QRectF SliderGeometry::knob(double value) const {
  const QPointF centre = knobCentre(value);
  return {centre.x() - knobRadius, centre.y() - knobRadius, knobDiameter, knobDiameter};
}

QRectF SliderGeometry::track() const {
  return {0, (height - trackHeight) / 2, width, trackHeight};
}

QRectF SliderGeometry::fill(double value) const {
  QRectF filled = track();
  const double centre = knobCentre(value).x();
  if (isMirrored) {
    filled.setLeft(centre);
  } else {
    filled.setRight(centre);
  }
  return filled;
}

double SliderGeometry::valueAt(double x) const {
  const double travel = width - knobDiameter;
  if (!(travel > 0)) return range.admitted(range.minimum);
  const double gone = isMirrored ? width - knobRadius - x : x - knobRadius;
  return range.admitted(range.minimum + std::clamp(gone / travel, 0.0, 1.0) * range.span());
}

std::vector<double> SliderGeometry::ticks() const {
  if (range.step <= 0 || !(range.span() > 0)) return {};
  const double count = std::floor(range.span() / range.step + 1e-9);
  if ((width - knobDiameter) / std::max(count, 1.0) < minimumTickDistance) return {};
  std::vector<double> xs;
  for (int tick = 0; tick <= static_cast<int>(count); ++tick) {
    xs.push_back(knobCentre(range.minimum + tick * range.step).x());
  }
  if (isMirrored) std::reverse(xs.begin(), xs.end());
  return xs;
}

} // namespace ventolith::ui
