// Where the values of a temperature-to-speed chart lie on its plot area, and back.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <vector>

namespace ventolith::ui {

/// A closed range of an axis.
struct ChartDomain {
  double lower = 0;
  double upper = 1;

  [[nodiscard]] double length() const { return upper - lower; }
  [[nodiscard]] double middle() const { return lower + length() / 2; }
  bool operator==(const ChartDomain&) const = default;
};

/// A place in data units.
struct ChartValue {
  double celsius = 0;
  double percent = 0;

  bool operator==(const ChartValue&) const = default;
};

// The axes of the curve editor, whatever the data.
inline constexpr ChartDomain xDomain{.lower = 30, .upper = 105};
inline constexpr ChartDomain yDomain{.lower = 0, .upper = 100};
inline constexpr double temperatureTickStep = 15;
inline constexpr double speedTickStep = 25;

/// Where the line of the safety override stands, degrees Celsius.
inline constexpr double safetyCelsius = 95;

/// Linear in both directions: temperatures from left to right, speeds from bottom to top. Both conversions
/// go on beyond the plot area.
struct ChartGeometry {
  QRectF plot; // Pixels.
  ChartDomain temperatures = xDomain;
  ChartDomain speeds = yDomain;

  /// The curve editor's chart in a surface of that size, with room for ticks, labels and annotations.
  [[nodiscard]] static ChartGeometry inSurface(QSizeF size);

  [[nodiscard]] double x(double celsius) const;
  [[nodiscard]] double y(double percent) const;
  [[nodiscard]] QPointF position(ChartValue value) const { return {x(value.celsius), y(value.percent)}; }

  /// None without a plot area, and when a coordinate or what it leads to is not finite.
  [[nodiscard]] std::optional<ChartValue> value(QPointF position) const;

  /// Where the label of the live point goes: above the point, centred, inside `surface`.
  [[nodiscard]] QRectF liveLabel(QPointF point, double textWidth, const QRectF& surface) const;

  bool operator==(const ChartGeometry&) const = default;
};

/// From the lower bound on, in steps, up to the upper bound.
[[nodiscard]] std::vector<double> steps(const ChartDomain& domain, double step);

} // namespace ventolith::ui
