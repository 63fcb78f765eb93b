#include "ui/state/ChartGeometry.h"

#include <algorithm>
#include <cmath>

namespace ventolith::ui {

namespace {

constexpr double plotLeft = 52;
constexpr double plotRight = 16;
constexpr double plotTop = 32;
constexpr double plotBottom = 44;

constexpr double labelHeight = 20;
constexpr double labelPadding = 8;
constexpr double labelRise = 13; // From the centre of the point to the label.

/// As near to `wanted` as `length` fits between the two; at `lower` if it does not fit.
double placed(double wanted, double length, double lower, double upper) {
  return std::max(lower, std::min(wanted, upper - length));
}

} // namespace

ChartGeometry ChartGeometry::inSurface(QSizeF size) {
  return {.plot = QRectF(plotLeft, plotTop, size.width() - plotLeft - plotRight,
                         size.height() - plotTop - plotBottom)};
}

double ChartGeometry::x(double celsius) const {
  return plot.left() + (celsius - temperatures.lower) / temperatures.length() * plot.width();
}

double ChartGeometry::y(double percent) const {
  return plot.bottom() - (percent - speeds.lower) / speeds.length() * plot.height();
}

std::optional<ChartValue> ChartGeometry::value(QPointF position) const {
  if (!(plot.width() > 0 && plot.height() > 0)) return std::nullopt;
  const QPointF offset = position - plot.topLeft();
  const ChartValue value{
      .celsius = temperatures.lower + offset.x() / plot.width() * temperatures.length(),
      .percent = speeds.upper - offset.y() / plot.height() * speeds.length(),
  };
  if (!std::isfinite(value.celsius) || !std::isfinite(value.percent)) return std::nullopt;
  return value;
}

QRectF ChartGeometry::liveLabel(QPointF point, double textWidth, const QRectF& surface) const {
  const double width = textWidth + 2 * labelPadding;
  return {placed(point.x() - width / 2, width, surface.left(), surface.right()),
          placed(point.y() - labelRise - labelHeight, labelHeight, surface.top(), surface.bottom()), width,
          labelHeight};
}

std::vector<double> steps(const ChartDomain& domain, double step) {
  std::vector<double> values;
  const auto count = static_cast<int>(std::floor(domain.length() / step));
  for (int place = 0; place <= count; ++place)
    values.push_back(domain.lower + place * step);
  return values;
}

} // namespace ventolith::ui
