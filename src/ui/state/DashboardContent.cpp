#include "ui/state/DashboardContent.h"

#include "ui/state/Numbers.h"

#include <QCoreApplication>

namespace ventolith::ui {

namespace {

class Dashboard {
  Q_DECLARE_TR_FUNCTIONS(Dashboard)
};

QString sensorDetail(const core::TempSensor& sensor) {
  const core::TemperatureBand band = core::TemperatureScale::band(sensor.celsius);
  return Dashboard::tr("%1 · %2").arg(utf8Text(core::rawValue(sensor.category)),
                                      utf8Text(core::rawValue(band)));
}

} // namespace

SensorRowContent sensorRowContent(const core::TempSensor& sensor, core::ColorScheme scheme) {
  return {.name = utf8Text(sensor.name),
          .detail = sensorDetail(sensor),
          .reading = Dashboard::tr("%1°C").arg(fixedText(sensor.celsius, 1)),
          .color = core::TemperatureScale::color(sensor.celsius, scheme)};
}

DashboardTexts dashboardTexts() {
  return {.fans = Dashboard::tr("Fans"),
          .noFans = Dashboard::tr("No fans detected"),
          .sensors = Dashboard::tr("Sensors"),
          .noSensors = Dashboard::tr("No sensors detected")};
}

} // namespace ventolith::ui
