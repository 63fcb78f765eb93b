// How a temperature is shown everywhere: a word and a colour.
#pragma once

#include <array>
#include <string_view>

namespace ventolith::core {

/// Five ranges of temperature. The cases are named cooler than the words that the user reads.
enum class TemperatureBand { cool, mild, warm, hot, critical };

/// The word that is shown: "Idle", "Normal", "Working", "Heavy", "Throttle risk".
[[nodiscard]] std::string_view rawValue(TemperatureBand band);

/// The appearance that a colour is for.
enum class ColorScheme { light, dark };

/// An opaque sRGB colour, each component 0 to 1.
struct Color {
  double r = 0;
  double g = 0;
  double b = 0;

  bool operator==(const Color&) const = default;
};

/// The scale from blue at 35 °C to red at 97 °C. Its stops and the limits of the bands are two tables of
/// their own, which do not meet: 60 °C begins a band while its colour is still on the way to the next.
struct TemperatureScale {
  struct Stop {
    double celsius = 0;
    Color light;
    Color dark;

    bool operator==(const Stop&) const = default;
  };

  static const std::array<Stop, 5> stops; // In ascending temperature.

  /// A limit belongs to the warmer band. What is not a number is critical.
  [[nodiscard]] static TemperatureBand band(double celsius);

  /// Linear between two stops on the sRGB components, flat outside them. What is not a number has the
  /// colour of the hottest stop.
  [[nodiscard]] static Color color(double celsius, ColorScheme scheme);
};

} // namespace ventolith::core
