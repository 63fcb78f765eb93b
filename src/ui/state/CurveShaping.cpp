#include "ui/state/CurveShaping.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ventolith::ui {

namespace {

/// How warm or how cool the neighbours and the axis let a point become.
struct Limits {
  double lower;
  double upper;

  [[nodiscard]] bool leaveRoom() const { return lower <= upper; }
  /// The upper limit wins over the lower one.
  [[nodiscard]] double kept(double celsius) const { return std::min(std::max(celsius, lower), upper); }
};

Limits limits(std::size_t place, const CurvePoints& points) {
  const bool isFirst = place == 0;
  const bool isLast = place + 1 == points.size();
  return {
      .lower = isFirst ? xDomain.lower : points[place - 1].celsius + neighbourDistance,
      .upper = isLast ? xDomain.upper : points[place + 1].celsius - neighbourDistance,
  };
}

double keptPercent(double percent) {
  const double kept = std::clamp(percent, yDomain.lower, yDomain.upper);
  return kept + 0.0; // Rounding leaves a zero with a sign behind.
}

/// The next multiple of `step` above `value`, or below it.
double nextAbove(double value, double step) {
  return (std::floor(value / step) + 1) * step;
}
double nextBelow(double value, double step) {
  return (std::ceil(value / step) - 1) * step;
}

bool isWithinReach(ChartValue value, const core::CurvePoint& point) {
  return std::abs(point.celsius - value.celsius) <= reachCelsius &&
         std::abs(point.percent - value.percent) <= reachPercent;
}

double squaredDistance(ChartValue value, const core::CurvePoint& point) {
  const double x = (point.celsius - value.celsius) / reachCelsius;
  const double y = (point.percent - value.percent) / reachPercent;
  return x * x + y * y;
}

} // namespace

CurvePoints sorted(CurvePoints points) {
  const auto isCooler = [](const core::CurvePoint& one, const core::CurvePoint& other) {
    return std::isnan(other.celsius) ? !std::isnan(one.celsius) : one.celsius < other.celsius;
  };
  std::stable_sort(points.begin(), points.end(), isCooler);
  return points;
}

std::optional<std::size_t> placeOf(const core::UUID& id, const CurvePoints& points) {
  const auto isIt = [&](const core::CurvePoint& point) { return point.id == id; };
  const auto found = std::find_if(points.begin(), points.end(), isIt);
  if (found == points.end()) return std::nullopt;
  return static_cast<std::size_t>(found - points.begin());
}

std::optional<core::UUID> nearestPoint(ChartValue value, const CurvePoints& points) {
  std::optional<core::UUID> nearest;
  double best = std::numeric_limits<double>::infinity();
  for (const core::CurvePoint& point : points) {
    if (!isWithinReach(value, point)) continue;
    const double distance = squaredDistance(value, point);
    if (distance >= best) continue;
    best = distance;
    nearest = point.id;
  }
  return nearest;
}

core::CurvePoint draggedPoint(ChartValue value, std::size_t place, const CurvePoints& points) {
  core::CurvePoint point = points[place];
  const Limits limit = limits(place, points);
  if (!limit.leaveRoom()) return point;
  point.celsius = limit.kept(std::round(value.celsius / celsiusStep) * celsiusStep);
  point.percent = keptPercent(std::round(value.percent / percentStep) * percentStep);
  return point;
}

core::CurvePoint nudgedPoint(Nudge nudge, std::size_t place, const CurvePoints& points) {
  core::CurvePoint point = points[place];
  const Limits limit = limits(place, points);
  if (!limit.leaveRoom()) return point;
  switch (nudge) {
  case Nudge::cooler: point.celsius = limit.kept(nextBelow(point.celsius, celsiusStep)); break;
  case Nudge::warmer: point.celsius = limit.kept(nextAbove(point.celsius, celsiusStep)); break;
  case Nudge::slower: point.percent = keptPercent(nextBelow(point.percent, percentStep)); break;
  case Nudge::faster: point.percent = keptPercent(nextAbove(point.percent, percentStep)); break;
  }
  return point;
}

double temperatureOfNewPoint(const CurvePoints& points) {
  if (points.size() < 2) return xDomain.middle();
  const CurvePoints ascending = sorted(points);
  std::size_t widest = 1; // The right end of the gap.
  for (std::size_t right = 2; right < ascending.size(); ++right) {
    const auto gapBefore = [&](std::size_t end) {
      return ascending[end].celsius - ascending[end - 1].celsius;
    };
    if (gapBefore(right) > gapBefore(widest)) widest = right;
  }
  return (ascending[widest - 1].celsius + ascending[widest].celsius) * 0.5;
}

bool canDelete(std::size_t place, const CurvePoints& points) {
  return points.size() >= 3 && place > 0 && place + 1 < points.size();
}

std::vector<ChartValue> samples(const core::FanCurve& curve, const ChartDomain& temperatures, double step) {
  std::vector<ChartValue> line;
  for (const double celsius : steps(temperatures, step))
    line.push_back({.celsius = celsius, .percent = curve.percent(celsius)});
  return line;
}

} // namespace ventolith::ui
