#include "ui/state/MenuBarContent.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

#include <algorithm>

namespace ventolith::ui {

namespace {

class MenuBar {
  Q_DECLARE_TR_FUNCTIONS(MenuBar)
};

constexpr std::size_t chipLimit = 3;

QString degrees(double celsius) {
  return MenuBar::tr("%1°").arg(fixedText(celsius, 0));
}

} // namespace

MenuBarLabelContent menuBarLabelContent(const core::SensorSnapshot& snapshot,
                                        const std::optional<core::Fan>& representativeFan) {
  MenuBarLabelContent content;
  if (const core::TempSensor* const hottest = snapshot.hottest()) {
    content.temperature = degrees(hottest->celsius);
  }
  if (representativeFan) {
    content.figure = wholeText(representativeFan->currentRPM);
    content.speed = MenuBar::tr("%1rpm").arg(content.figure);
  }
  return content;
}

PanelHeaderContent panelHeaderContent(const core::SensorSnapshot& snapshot, const QString& statusWord,
                                      core::ColorScheme scheme) {
  const core::TempSensor* const hottest = snapshot.hottest();
  if (hottest == nullptr) {
    return {.title = MenuBar::tr("No sensor data"),
            .statusWord = statusWord,
            .symbol = QStringLiteral("thermometer")};
  }
  return {.title = utf8Text(hottest->name),
          .statusWord = statusWord,
          .temperature = MenuBar::tr("%1°C").arg(fixedText(hottest->celsius, 0)),
          .dot = core::TemperatureScale::color(hottest->celsius, scheme)};
}

std::vector<SensorChipContent> sensorChips(const core::SensorSnapshot& snapshot, core::ColorScheme scheme) {
  std::vector<SensorChipContent> chips;
  const std::size_t count = std::min(chipLimit, snapshot.temps.size());
  for (std::size_t place = 0; place < count; ++place) {
    const core::TempSensor& sensor = snapshot.temps[place];
    chips.push_back({.name = utf8Text(sensor.name),
                     .temperature = degrees(sensor.celsius),
                     .dot = core::TemperatureScale::color(sensor.celsius, scheme)});
  }
  return chips;
}

FanControlBlockContent fanControlBlockContent(const FanControlBlockState& state) {
  const QString name = utf8Text(state.fan.name);
  const SpeedRange range = speedRange(state.fan);
  const std::int64_t percent = range.percent(state.sliderValue);
  return {
      .name = name,
      .speed = MenuBar::tr("%1 rpm").arg(wholeText(state.fan.currentRPM)),
      .badge = modeBadge(state.mode),
      .sliderRange = range,
      .sliderValue = state.sliderValue,
      .percentage = percentText(percent),
      .isSliderEnabled = state.canControlFans,
      .isFullBlastEnabled = state.canControlFans,
      .isAutoEnabled = state.isHelperActive,
      .fullBlastToolTip = MenuBar::tr("Full Blast"),
      .autoToolTip = state.isHelperActive ? MenuBar::tr("Restore automatic fan control")
                                          : MenuBar::tr("Fan control isn't active yet"),
      .spokenSliderName = MenuBar::tr("%1 speed").arg(name),
      .spokenSliderValue = MenuBar::tr("%1 percent").arg(wholeText(percent)),
      .spokenSliderHint = MenuBar::tr("Sets a manual fan speed when released"),
      .spokenFullBlast = MenuBar::tr("Set %1 to Full Blast").arg(name),
      .spokenAuto = MenuBar::tr("Restore automatic control for %1").arg(name),
  };
}

MenuBarTexts menuBarTexts() {
  return {
      .noFans = MenuBar::tr("No fans detected"),
      .preset = MenuBar::tr("Preset"),
      .restoreAuto = MenuBar::tr("Restore Auto"),
      .restoreAutoToolTip = MenuBar::tr("Restores every fan to automatic control"),
      .openWindow = MenuBar::tr("Open Ventolith"),
      .openWindowToolTip = MenuBar::tr("Opens the Ventolith dashboard window"),
      .support = MenuBar::tr("Support"),
      .quit = MenuBar::tr("Quit"),
  };
}

} // namespace ventolith::ui
