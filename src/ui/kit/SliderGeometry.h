// Where a slider's value lies in its widget, and back.
#pragma once

#include <QPointF>
#include <QRectF>

#include <vector>

namespace ventolith::ui {

/// The bounds of a slider. `step` above zero puts every value on `minimum + n * step`; zero is continuous.
struct SliderRange {
  double minimum = 0;
  double maximum = 1;
  double step = 0;

  bool operator==(const SliderRange&) const = default;
  [[nodiscard]] double span() const { return maximum - minimum; }
  /// The nearest value that the slider may have. What is not a number becomes the minimum.
  [[nodiscard]] double admitted(double value) const;
};

/// Maps values to pixels of a slider of this width, in both directions. Pure: it knows no widget.
struct SliderGeometry {
  static constexpr double height = 18; // Without ticks.
  static constexpr double trackHeight = 4;
  static constexpr double knobDiameter = 16;
  static constexpr double knobRadius = knobDiameter / 2;
  static constexpr double tickHeight = 4;
  static constexpr double tickGap = 3; // From the slider's own height down to its ticks.

  SliderRange range;
  double width = 0;
  bool isMirrored = false; // The minimum stands at the right, as in right-to-left languages.

  [[nodiscard]] static constexpr double heightWithTicks() { return height + tickGap + tickHeight; }

  /// The part of the way that the value has gone, 0...1; 0 when there is no way to go.
  [[nodiscard]] double fraction(double value) const;
  [[nodiscard]] QPointF knobCentre(double value) const;
  [[nodiscard]] QRectF knob(double value) const;
  [[nodiscard]] QRectF track() const;
  /// From the track's beginning to the knob's centre.
  [[nodiscard]] QRectF fill(double value) const;
  /// The admitted value whose knob's centre is nearest to the x coordinate.
  [[nodiscard]] double valueAt(double x) const;
  /// The x coordinates of the ticks, from the left; none for a continuous slider, nor for one whose ticks
  /// would touch.
  [[nodiscard]] std::vector<double> ticks() const;
};

} // namespace ventolith::ui
