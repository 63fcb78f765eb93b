#include "core/FanCurve.h"

#include <algorithm>
#include <cmath>

namespace ventolith::core {

namespace {

double rawPercent(const std::vector<CurvePoint>& sorted, double celsius) {
  if (sorted.front().celsius >= celsius) return sorted.front().percent;
  if (sorted.back().celsius <= celsius) return sorted.back().percent;
  for (std::size_t right = 1; right < sorted.size(); ++right) {
    const CurvePoint& a = sorted[right - 1];
    const CurvePoint& b = sorted[right];
    if (!(a.celsius <= celsius && b.celsius >= celsius)) continue;
    if (a.celsius == b.celsius) return b.percent;
    return a.percent + (celsius - a.celsius) / (b.celsius - a.celsius) * (b.percent - a.percent);
  }
  return sorted.back().percent; // Only a temperature that is not a number comes here: the hot end.
}

} // namespace

std::string_view rawValue(CurveInterpolation interpolation) {
  return interpolation == CurveInterpolation::linear ? "linear" : "monotone";
}

std::optional<CurveInterpolation> curveInterpolation(std::string_view rawValue) {
  if (rawValue == "linear") return CurveInterpolation::linear;
  if (rawValue == "monotone") return CurveInterpolation::monotone;
  return std::nullopt;
}

double FanCurve::percent(double celsius) const {
  if (points.empty()) return 0;
  const auto isCooler = [](const CurvePoint& a, const CurvePoint& b) { return a.celsius < b.celsius; };
  double raw = 0;
  if (std::is_sorted(points.begin(), points.end(), isCooler)) {
    raw = rawPercent(points, celsius);
  } else {
    auto sorted = points;
    std::stable_sort(sorted.begin(), sorted.end(), isCooler);
    raw = rawPercent(sorted, celsius);
  }
  if (std::isnan(raw)) return 100; // Points too far apart for a float: err on the loud side.
  return raw <= 0 ? 0 : std::min(raw, 100.0);
}

} // namespace ventolith::core
