#include "programs/ventolithctl/ReadingTable.h"

#include "core/NumberText.h"
#include "core/TemperatureScale.h"
#include "programs/ventolithctl/TextLayout.h"

#include <fmt/format.h>

#include <algorithm>

namespace ventolith::ctl {

namespace {

using core::Fan;
using core::SensorSnapshot;
using core::TempSensor;

constexpr int leastColumns = 30;
constexpr int celsiusColumns = 8;     // "-40.0 °C"
constexpr int bandColumns = 13;       // "Throttle risk"
constexpr int rpmColumns = 9;         // "99999 RPM"
constexpr int comfortableSensor = 40; // The least for which a further column is opened.
constexpr int maxSensorColumns = 3;

std::string modeText(const Fan& fan) {
  if (!fan.mode) return "";
  switch (*fan.mode) {
  case 0: return "auto";
  case 1: return "manual";
  case 3: return "taken back";
  default: return fmt::format("mode {}", *fan.mode);
  }
}

double rangeFraction(const Fan& fan) {
  const auto min = static_cast<double>(fan.minRPM);
  const auto span = static_cast<double>(fan.maxRPM) - min;
  return span > 0 ? (static_cast<double>(fan.currentRPM) - min) / span : 0;
}

std::string fanLine(const Fan& fan, int columns) {
  const std::string rpm = rightIn(rpmColumns, fmt::format("{} RPM", fan.currentRPM));
  const std::string tail = fmt::format("  {} to {}  {}", fan.minRPM, fan.maxRPM, modeText(fan));
  const int nameColumns = columns < 50 ? 8 : 14;
  const int tailColumns = columns < 60 ? 12 : 28;
  const std::string shownTail = columns < 60 ? "  " + modeText(fan) : tail;
  const int barColumns = std::min(columns - nameColumns - 1 - rpmColumns - tailColumns, 48);
  const std::string drawn = barColumns < 4 ? "" : bar(rangeFraction(fan), barColumns);
  const std::string line = leftIn(nameColumns, printable(fan.name)) + drawn + " " + rpm + shownTail;
  return withoutTrailingSpaces(leftIn(columns, line));
}

std::string sensorCell(const TempSensor& sensor, int columns, const TableStyle& style) {
  const std::string_view band = rawValue(core::TemperatureScale::band(sensor.celsius));
  const std::string reading = rightIn(celsiusColumns, celsiusText(sensor.celsius)).append("  ").append(band);
  const std::string fill = leftIn(bandColumns - columnsOf(band), "");
  const int rest = columns - celsiusColumns - 2 - bandColumns - 1;
  const int idColumns = style.showsSensorIDs ? rest / 2 : 0;
  const std::string id = idColumns > 0 ? leftIn(idColumns - 1, printable(sensor.id())) + " " : "";
  const std::string name = leftIn(rest - idColumns, printable(sensor.name));
  return id + name + " " + inColorOf(sensor.celsius, style.colors, reading) + fill;
}

/// The sensors down the first column, then down the second.
void appendSensors(const std::vector<TempSensor>& temps, const TableStyle& style,
                   std::vector<std::string>& lines) {
  const int fitting = std::clamp(style.columns / comfortableSensor, 1, maxSensorColumns);
  const int across = style.showsSensorIDs ? 1 : fitting;
  const int cellColumns = (style.columns - 2 * (across - 1)) / across;
  const std::size_t count = temps.size();
  const std::size_t down = (count + static_cast<std::size_t>(across) - 1) / static_cast<std::size_t>(across);
  for (std::size_t row = 0; row < down; ++row) {
    std::string line;
    for (std::size_t place = row; place < count; place += down) {
      if (place != row) line += "  ";
      line += sensorCell(temps[place], cellColumns, style);
    }
    lines.push_back(withoutTrailingSpaces(std::move(line)));
  }
}

std::string fanState(const std::vector<Fan>& fans) {
  if (fans.empty()) return "no fans";
  const auto count = [&fans](std::int64_t mode) {
    return std::count_if(fans.begin(), fans.end(), [mode](const Fan& fan) { return fan.mode == mode; });
  };
  if (const auto manual = count(1); manual > 0) return fmt::format("{} of {} fans held", manual, fans.size());
  if (const auto taken = count(3); taken > 0) {
    return fmt::format("{} of {} fans taken back by the firmware", taken, fans.size());
  }
  const bool isKnown =
      std::any_of(fans.begin(), fans.end(), [](const Fan& fan) { return fan.mode.has_value(); });
  return isKnown ? "the firmware drives the fans" : "who drives the fans cannot be read";
}

std::string hottestText(const SensorSnapshot& snapshot) {
  const TempSensor* hottest = snapshot.hottest();
  if (hottest == nullptr) return "no temperatures";
  return fmt::format("hottest {} {} ({})", printable(hottest->name), celsiusText(hottest->celsius),
                     rawValue(core::TemperatureScale::band(hottest->celsius)));
}

} // namespace

std::vector<std::string> readingTable(const SensorSnapshot& snapshot, const TableStyle& asked) {
  TableStyle style = asked;
  style.columns = std::max(asked.columns, leastColumns);
  std::vector<std::string> lines;
  for (const Fan& fan : snapshot.fans)
    lines.push_back(fanLine(fan, style.columns));
  if (snapshot.fans.empty()) lines.emplace_back("No fans.");
  lines.emplace_back();
  appendSensors(snapshot.temps, style, lines);
  if (snapshot.temps.empty()) lines.emplace_back("No temperature sensors.");
  return lines;
}

std::string stateLine(const SensorSnapshot& snapshot) {
  return fmt::format("{}; {}", hottestText(snapshot), fanState(snapshot.fans));
}

std::string logLine(double seconds, const SensorSnapshot& snapshot) {
  std::string line = fmt::format("t={}", core::fractionText(seconds));
  for (const Fan& fan : snapshot.fans)
    line += fmt::format("  {} {} RPM", printable(fan.name), fan.currentRPM);
  return line + "  " + stateLine(snapshot);
}

} // namespace ventolith::ctl
