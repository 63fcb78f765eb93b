#include "core/TemperatureScale.h"

namespace ventolith::core {

namespace {

constexpr Color sRGB(int r, int g, int b) {
  return {.r = r / 255.0, .g = g / 255.0, .b = b / 255.0};
}

const Color& of(const TemperatureScale::Stop& stop, ColorScheme scheme) {
  return scheme == ColorScheme::dark ? stop.dark : stop.light;
}

Color between(const Color& lower, const Color& upper, double t) {
  return {.r = lower.r + t * (upper.r - lower.r),
          .g = lower.g + t * (upper.g - lower.g),
          .b = lower.b + t * (upper.b - lower.b)};
}

} // namespace

const std::array<TemperatureScale::Stop, 5> TemperatureScale::stops = {{
    {.celsius = 35, .light = sRGB(62, 155, 255), .dark = sRGB(79, 168, 255)},
    {.celsius = 52, .light = sRGB(52, 199, 89), .dark = sRGB(48, 209, 88)},
    {.celsius = 67, .light = sRGB(255, 179, 64), .dark = sRGB(255, 194, 75)},
    {.celsius = 82, .light = sRGB(255, 138, 52), .dark = sRGB(255, 159, 69)},
    {.celsius = 97, .light = sRGB(255, 59, 48), .dark = sRGB(255, 69, 58)},
}};

std::string_view rawValue(TemperatureBand band) {
  switch (band) {
  case TemperatureBand::cool: return "Idle";
  case TemperatureBand::mild: return "Normal";
  case TemperatureBand::warm: return "Working";
  case TemperatureBand::hot: return "Heavy";
  case TemperatureBand::critical: break;
  }
  return "Throttle risk";
}

TemperatureBand TemperatureScale::band(double celsius) {
  if (celsius < 45) return TemperatureBand::cool;
  if (celsius < 60) return TemperatureBand::mild;
  if (celsius < 75) return TemperatureBand::warm;
  if (celsius < 90) return TemperatureBand::hot;
  return TemperatureBand::critical;
}

Color TemperatureScale::color(double celsius, ColorScheme scheme) {
  if (stops.front().celsius >= celsius) return of(stops.front(), scheme);
  for (std::size_t right = 1; right < stops.size(); ++right) {
    const Stop& lower = stops[right - 1];
    const Stop& upper = stops[right];
    if (!(lower.celsius <= celsius && upper.celsius >= celsius)) continue;
    const double t = (celsius - lower.celsius) / (upper.celsius - lower.celsius);
    return between(of(lower, scheme), of(upper, scheme), t);
  }
  return of(stops.back(), scheme);
}

} // namespace ventolith::core
